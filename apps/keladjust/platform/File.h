#ifndef KELADJUST_APP_PLATFORM_FILE_H
#define KELADJUST_APP_PLATFORM_FILE_H

#include <cstddef>
#include <filesystem>
#include <span>

namespace keladjust::app::platform {

/// An open file, without a buffer. What the system interrupts goes on where it was, and what it
/// does in pieces is done to the end.
///
/// Every function but the destructor throws std::system_error where the system refuses.
class File {
public:
    /// Opens a file that there is.
    static File toRead(const std::filesystem::path& path);

    /// Makes a file; refused, as std::errc::file_exists, where there is one of that name.
    static File toCreate(const std::filesystem::path& path);

    ~File();
    File(File&& other) noexcept;
    File& operator=(File&&) = delete;

    /// @return how many bytes came; 0 at the end of the file
    std::size_t read(std::span<unsigned char> room);

    void write(std::span<const unsigned char> bytes);

    /// Waits until what was written outlives a loss of power.
    void flushToDisk();

    /// Systems may tell only now that a write has failed.
    void close();

private:
    explicit File(int descriptor) : descriptor_(descriptor) {}

    int descriptor_;  // -1: closed
};

}  // namespace keladjust::app::platform

#endif
