#ifndef KELADJUST_APP_PLATFORM_FILENAMES_H
#define KELADJUST_APP_PLATFORM_FILENAMES_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace keladjust::app::platform {

/// Equal for spellings of `path` that the system takes for one file, such as in capitals or not.
std::filesystem::path comparable(const std::filesystem::path& path);

/// The same for all names of one existing file, such as hard links, and for no other's; nothing if
/// there is no such file.
std::optional<std::pair<std::uint64_t, std::uint64_t>> fileIdentity(
    const std::filesystem::path& path);

/// The name by which functions that take a `const char*` find an existing file or folder; nothing
/// if no such name can be made.
std::optional<std::string> narrow(const std::filesystem::path& path);

/// What is wrong with a name under which nothing could be written, if the system's own message does
/// not say so.
std::optional<std::string> faultIn(const std::filesystem::path& path);

}  // namespace keladjust::app::platform

#endif
