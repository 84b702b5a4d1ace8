#include "platform/FileNames.h"

namespace keladjust::app::platform {

std::filesystem::path comparable(const std::filesystem::path& path) {
    return path;
}

std::optional<std::string> narrow(const std::filesystem::path& path) {
    return path.string();
}

std::optional<std::string> faultIn(const std::filesystem::path&) {
    return std::nullopt;
}

}  // namespace keladjust::app::platform
