#include "platform/FileNames.h"

namespace keladjust::app::platform {

std::filesystem::path comparable(const std::filesystem::path& path) {
    return path;
}

std::string narrow(const std::filesystem::path& path) {
    return path.string();
}

}  // namespace keladjust::app::platform
