#ifndef KELADJUST_APP_FILES_INPUTFILE_H
#define KELADJUST_APP_FILES_INPUTFILE_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <span>

#include "files/Bytes.h"

namespace keladjust::app {

/// How a file is read that may hold anything, and need not have an end.
struct ReadingRules {
    std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

    /// Looks at the first bytes, and throws where nobody wants the rest. May be empty.
    std::function<void(std::span<const unsigned char>)> checkStart = {};
};

/// The whole file.
///
/// @throws Failure if there is no such file, it is a folder, larger than allowed, or it cannot be
///         read
Bytes readFile(const std::filesystem::path& path, const ReadingRules& rules = {});

/// The first bytes of a regular file; none of anything else, since reading a pipe would empty it.
Bytes readStart(const std::filesystem::path& path, std::size_t count);

}  // namespace keladjust::app

#endif
