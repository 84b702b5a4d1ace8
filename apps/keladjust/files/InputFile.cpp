#include "files/InputFile.h"

#include <algorithm>
#include <system_error>

#include "platform/File.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 16;

platform::File opened(const std::filesystem::path& path) {
    try {
        return platform::File::toRead(path);
    } catch (const std::system_error& error) {
        throw Failure("cannot be opened: " + error.code().message() +
                      "; check that you may read it");
    }
}

/// @return false at the end of the file
bool append(platform::File& file, Bytes& piece, Bytes& bytes) {
    try {
        const std::size_t count = file.read(piece);
        bytes.insert(bytes.end(), piece.begin(),
                     piece.begin() + static_cast<std::ptrdiff_t>(count));
        return count > 0;
    } catch (const std::system_error& error) {
        throw Failure("cannot be read to its end: " + error.code().message() + "; check the disk");
    }
}

}  // namespace

Bytes readFile(const std::filesystem::path& path, const ReadingRules& rules) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        throw Failure("no such file; check the name and the folder");
    }
    if (std::filesystem::is_directory(status)) {
        throw Failure("this is a folder; name the pictures in it");
    }
    platform::File file = opened(path);
    Bytes piece(pieceSize);
    Bytes bytes;
    bool more = true;
    // What a pipe gives comes in pieces of any size.
    while (more && bytes.size() < pieceSize) more = append(file, piece, bytes);
    if (rules.checkStart) rules.checkStart(bytes);

    // Only now, since a sparse file is of any size. A pipe has none to ask for.
    if (more && std::filesystem::is_regular_file(status)) {
        const auto size = std::filesystem::file_size(path, error);
        if (!error) bytes.reserve(static_cast<std::size_t>(std::min(size, rules.largest)));
    }
    while (more && bytes.size() <= rules.largest) more = append(file, piece, bytes);
    if (bytes.size() > rules.largest) {
        throw Failure("is larger than " + std::to_string(rules.largest) +
                      " bytes, which is more than it can need");
    }
    return bytes;
}

Bytes readStart(const std::filesystem::path& path, std::size_t count) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return {};
    Bytes start(count);
    std::size_t filled = 0;
    try {
        platform::File file = platform::File::toRead(path);
        for (std::size_t got = 1; filled < count && got > 0; filled += got) {
            got = file.read(std::span(start).subspan(filled));
        }
    } catch (const std::system_error&) {
        // Whoever reads the whole file is told.
    }
    start.resize(filled);
    return start;
}

}  // namespace keladjust::app
