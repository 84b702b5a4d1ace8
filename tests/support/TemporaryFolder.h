#ifndef KELADJUST_TESTS_TEMPORARYFOLDER_H
#define KELADJUST_TESTS_TEMPORARYFOLDER_H

#include <filesystem>
#include <string>
#include <vector>

namespace keladjust::test {

/// A new, empty folder that disappears with its contents.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

    /// The names of all files below the folder, sorted, with slashes; what a run left behind.
    std::vector<std::string> files() const;

private:
    std::filesystem::path path_;
};

}  // namespace keladjust::test

#endif
