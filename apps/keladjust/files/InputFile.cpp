#include "files/InputFile.h"

#include <fstream>

#include "text/Failure.h"

namespace keladjust::app {

Bytes readFile(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        throw Failure("no such file; check the name and the folder");
    }
    if (std::filesystem::is_directory(status)) {
        throw Failure("this is a folder; name the pictures in it");
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Failure("cannot be opened; check that you may read it");

    Bytes bytes;
    // A pipe has no size to ask for, so everything is read piece by piece.
    if (std::filesystem::is_regular_file(status)) {
        const auto size = std::filesystem::file_size(path, error);
        if (!error) bytes.reserve(static_cast<std::size_t>(size));
    }
    Bytes piece(std::size_t{1} << 16);
    do {
        file.read(reinterpret_cast<char*>(piece.data()),
                  static_cast<std::streamsize>(piece.size()));
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + file.gcount());
    } while (file);
    if (file.bad()) throw Failure("cannot be read to its end; check the disk");
    return bytes;
}

Bytes readStart(const std::filesystem::path& path, std::size_t count) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return {};
    std::ifstream file(path, std::ios::binary);
    Bytes start(count);
    file.read(reinterpret_cast<char*>(start.data()), static_cast<std::streamsize>(count));
    start.resize(static_cast<std::size_t>(file.gcount()));
    return start;
}

}  // namespace keladjust::app
