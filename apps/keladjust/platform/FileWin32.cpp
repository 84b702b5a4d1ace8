#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/File.h"

namespace keladjust::app::platform {

namespace {

/// The C library counts a transfer in `int`.
constexpr std::size_t largestTransfer = std::size_t{1} << 30;

int checked(int result) {
    if (result == -1) throw std::system_error(errno, std::generic_category());
    return result;
}

int open(const std::filesystem::path& path, int mode) {
    int descriptor = -1;
    const int error = _wsopen_s(&descriptor, path.c_str(), mode | _O_BINARY | _O_NOINHERIT,
                                _SH_DENYNO, _S_IREAD | _S_IWRITE);
    if (error != 0) throw std::system_error(error, std::generic_category());
    return descriptor;
}

}  // namespace

File File::toRead(const std::filesystem::path& path) {
    return File(open(path, _O_RDONLY));
}

File File::toCreate(const std::filesystem::path& path) {
    return File(open(path, _O_WRONLY | _O_CREAT | _O_EXCL));
}

File::~File() {
    if (descriptor_ != -1) _close(descriptor_);
}

File::File(File&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

std::size_t File::read(std::span<unsigned char> room) {
    const auto size = static_cast<unsigned>(std::min(room.size(), largestTransfer));
    return static_cast<std::size_t>(checked(_read(descriptor_, room.data(), size)));
}

void File::write(std::span<const unsigned char> bytes) {
    while (!bytes.empty()) {
        const auto size = static_cast<unsigned>(std::min(bytes.size(), largestTransfer));
        const int written = checked(_write(descriptor_, bytes.data(), size));
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void File::flushToDisk() {
    checked(_commit(descriptor_));
}

void File::close() {
    checked(_close(std::exchange(descriptor_, -1)));
}

}  // namespace keladjust::app::platform
