#include "files/ScratchFolder.h"

#include <random>
#include <string>

namespace keladjust::app {

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    if (error) {
        path_ = "there is no folder for temporary files";
        return;
    }
    std::random_device random;
    // A name that is taken is somebody else's folder.
    do {
        path_ = parent / ("keladjust-" + std::to_string(random()));
        isOurs_ = fs::create_directory(path_, error);
    } while (!isOurs_ && !error);
    if (isOurs_) fs::permissions(path_, fs::perms::owner_all, error);
}

ScratchFolder::~ScratchFolder() {
    remove();
}

void ScratchFolder::remove() {
    if (!isOurs_) return;
    std::error_code error;
    fs::remove_all(path_, error);
    if (!error) isOurs_ = false;
}

}  // namespace keladjust::app
