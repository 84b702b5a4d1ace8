#ifndef KELADJUST_APP_FILES_INPUTFILE_H
#define KELADJUST_APP_FILES_INPUTFILE_H

#include <filesystem>

#include "files/Bytes.h"

namespace keladjust::app {

/// The whole file.
///
/// @throws Failure if there is no such file, it is a folder, or it cannot be read
Bytes readFile(const std::filesystem::path& path);

/// The first bytes of a regular file; none of anything else, since reading a pipe would empty it.
Bytes readStart(const std::filesystem::path& path, std::size_t count);

}  // namespace keladjust::app

#endif
