#include <sys/stat.h>

#include "platform/FileNames.h"

namespace keladjust::app::platform {

std::filesystem::path comparable(const std::filesystem::path& path) {
    return path;
}

std::optional<std::pair<std::uint64_t, std::uint64_t>> fileIdentity(
    const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return std::pair<std::uint64_t, std::uint64_t>(status.st_dev, status.st_ino);
}

std::optional<std::string> narrow(const std::filesystem::path& path) {
    return path.string();
}

std::optional<std::string> faultIn(const std::filesystem::path&) {
    return std::nullopt;
}

}  // namespace keladjust::app::platform
