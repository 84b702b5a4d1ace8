#ifndef KELADJUST_APP_PLATFORM_FILENAMES_H
#define KELADJUST_APP_PLATFORM_FILENAMES_H

#include <filesystem>
#include <string>

namespace keladjust::app::platform {

/// Equal for spellings of `path` that the system takes for one file, such as in capitals or not.
std::filesystem::path comparable(const std::filesystem::path& path);

/// The name by which functions that take a `const char*` find an existing file or folder.
///
/// @throws Failure if no such name can be made
std::string narrow(const std::filesystem::path& path);

}  // namespace keladjust::app::platform

#endif
