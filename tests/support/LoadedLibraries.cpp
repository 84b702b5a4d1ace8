#include "support/LoadedLibraries.h"

#include <algorithm>
#include <filesystem>

namespace keladjust::test {

bool isLoaded(const std::string& part) {
    const std::vector<std::string> files = loadedLibraries();
    return std::any_of(files.begin(), files.end(), [&part](const std::string& file) {
        return std::filesystem::path(file).filename().string().find(part) != std::string::npos;
    });
}

}  // namespace keladjust::test
