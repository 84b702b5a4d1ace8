#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/Holdings.h"

namespace keladjust::test {

Holdings holdingsNow() {
    Holdings held;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmRSS:", 0) == 0) held.residentKilobytes = std::stol(line.substr(6));
        if (line.rfind("Threads:", 0) == 0) held.threads = std::stol(line.substr(8));
    }
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    held.handles = std::distance(begin(descriptors), end(descriptors));
    std::ifstream maps("/proc/self/maps");
    held.mappings = static_cast<long>(std::count(std::istreambuf_iterator<char>(maps), {}, '\n'));
    return held;
}

}  // namespace keladjust::test
