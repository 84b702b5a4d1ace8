#include "commands/OverlappedEncoding.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace keladjust::app {

namespace {

// What the library remembers of a picture's colours it has for one call: with many calls, long
// lists of settings take longer than all that overlapping gains. With few the encoder has not long
// to wait.
constexpr std::uint32_t parts = 4;

// What a call costs that does nothing does not count beside so many pixels.
constexpr std::uint32_t fewestPixels = 1 << 19;

}  // namespace

OverlappedEncoding::OverlappedEncoding(const Codec& writer, const EncodeOptions& options,
                                       Adjuster& adjuster, const _AdjustParam& record,
                                       std::function<bool(const Photo&)> accepts)
    : writer_(writer),
      options_(options),
      adjuster_(adjuster),
      record_(record),
      accepts_(std::move(accepts)) {}

void OverlappedEncoding::begin(Photo& photo) {
    if (!adjuster_.takesRows(photo, record_) || !accepts_(photo)) return;
    try {
        thread_ = std::thread([this, &photo] { work(photo); });
    } catch (const std::system_error&) {
        // Without a thread one follows the other.
    }
}

void OverlappedEncoding::end() noexcept {
    if (!thread_.joinable()) return;
    gate_.close();
    thread_.join();
    done_ = true;
}

Bytes OverlappedEncoding::takeResult() {
    if (failure_ != nullptr) std::rethrow_exception(failure_);
    return std::move(result_);
}

void OverlappedEncoding::work(Photo& photo) {
    const std::uint32_t rowsAtATime =
        std::max({photo.height() / parts + 1, fewestPixels / photo.width(), std::uint32_t{16}});
    std::uint32_t adjusted = 0;
    try {
        result_ = writer_.encode(photo, options_, [&](std::uint32_t rows) {
            while (adjusted < rows) {
                const std::uint32_t count = std::min(rowsAtATime, photo.height() - adjusted);
                gate_.waitFor(adjusted + count);
                adjuster_.adjustRows(photo, adjusted, count, record_);
                adjusted += count;
            }
        });
    } catch (...) {
        failure_ = std::current_exception();
    }
}

}  // namespace keladjust::app
