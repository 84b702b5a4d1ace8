#ifndef KELADJUST_APP_PLATFORM_FILENAMES_H
#define KELADJUST_APP_PLATFORM_FILENAMES_H

#include <filesystem>
#include <optional>
#include <string>

namespace keladjust::app::platform {

/// Equal for spellings of `path` that the system takes for one file, such as in capitals or not.
std::filesystem::path comparable(const std::filesystem::path& path);

/// The name by which functions that take a `const char*` find an existing file or folder; nothing
/// if no such name can be made.
std::optional<std::string> narrow(const std::filesystem::path& path);

/// What is wrong with a name under which nothing could be written, if the system's own message does
/// not say so.
std::optional<std::string> faultIn(const std::filesystem::path& path);

}  // namespace keladjust::app::platform

#endif
