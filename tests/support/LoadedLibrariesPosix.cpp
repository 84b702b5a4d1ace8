#include <fstream>

#include "support/LoadedLibraries.h"

namespace keladjust::test {

std::vector<std::string> loadedLibraries() {
    std::vector<std::string> files;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t path = line.find('/');
        if (path == std::string::npos) continue;
        if (files.empty() || files.back() != line.substr(path)) files.push_back(line.substr(path));
    }
    return files;
}

}  // namespace keladjust::test
