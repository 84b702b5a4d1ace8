#ifndef KELADJUST_APP_FILES_SCRATCHFOLDER_H
#define KELADJUST_APP_FILES_SCRATCHFOLDER_H

#include <filesystem>

namespace keladjust::app {

/// A new, empty folder for this run alone, away from the user's pictures. It goes with its
/// contents. Where none can be made, path() names a folder that does not exist.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// Removes it before its time. Files that are open stay readable where the system lets go of a
    /// name before the file.
    void remove();

private:
    std::filesystem::path path_;
    bool isOurs_ = false;
};

}  // namespace keladjust::app

#endif
