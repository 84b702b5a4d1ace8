#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/File.h"

namespace keladjust::app::platform {

namespace {

/// What `call` returns when no signal cuts it short.
template <class Call>
auto finished(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    if (result == -1) throw std::system_error(errno, std::generic_category());
    return result;
}

}  // namespace

File File::toRead(const std::filesystem::path& path) {
    return File(finished([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
}

File File::toCreate(const std::filesystem::path& path) {
    constexpr int mode = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    return File(finished([&] { return ::open(path.c_str(), mode, 0666); }));
}

File::~File() {
    if (descriptor_ != -1) ::close(descriptor_);
}

File::File(File&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

std::size_t File::read(std::span<unsigned char> room) {
    return static_cast<std::size_t>(
        finished([&] { return ::read(descriptor_, room.data(), room.size()); }));
}

void File::write(std::span<const unsigned char> bytes) {
    while (!bytes.empty()) {
        const auto written =
            finished([&] { return ::write(descriptor_, bytes.data(), bytes.size()); });
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void File::flushToDisk() {
    finished([&] { return ::fsync(descriptor_); });
}

void File::close() {
    // Interrupted or not, the descriptor is gone afterwards: a second try might close another's.
    const int result = ::close(std::exchange(descriptor_, -1));
    if (result == -1 && errno != EINTR) throw std::system_error(errno, std::generic_category());
}

}  // namespace keladjust::app::platform
