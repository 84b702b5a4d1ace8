#ifndef KELADJUST_PLATFORM_FILENAME_H
#define KELADJUST_PLATFORM_FILENAME_H

#include <cstddef>
#include <string>

namespace keladjust::platform {

/// Where in `path` the name of the file begins: behind the folder and its separator. The path is in
/// whatever encoding the system's functions with `char` names take.
std::size_t fileNameBegin(const std::string& path);

}  // namespace keladjust::platform

#endif
