#ifndef KELADJUST_TESTS_SUPPORT_HOSTNAME_H
#define KELADJUST_TESTS_SUPPORT_HOSTNAME_H

#include <filesystem>
#include <string>

namespace keladjust::test {

/// The name by which a host hands a file to the library: in whatever encoding the system's
/// functions with `char` names take.
/// @throws std::runtime_error if that encoding lacks one of its letters
std::string hostName(const std::filesystem::path& path);

}  // namespace keladjust::test

#endif
