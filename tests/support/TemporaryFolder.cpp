#include "support/TemporaryFolder.h"

#include <algorithm>
#include <random>

namespace keladjust::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        path_ = fs::temp_directory_path() / ("keladjust-test-" + std::to_string(random()));
    } while (!fs::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::vector<std::string> TemporaryFolder::files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(path_)) {
        if (!entry.is_directory()) {
            names.push_back(entry.path().lexically_relative(path_).generic_string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace keladjust::test
