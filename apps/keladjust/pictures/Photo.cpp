#include "pictures/Photo.h"

#include <limits>

#include "text/Failure.h"

namespace keladjust::app {

namespace {

// The library counts a picture's bytes, and the bits of a row, in 32 bits.
constexpr std::uint64_t largestSize = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t largestWidth = (largestSize - 31) / 32;

std::size_t checkedSize(std::uint64_t width, std::uint64_t height, ChannelLayout layout) {
    const std::string size = std::to_string(width) + " x " + std::to_string(height);
    if (width == 0 || height == 0) throw Failure("the picture has no pixels (" + size + ")");
    const std::uint64_t bytesPerPixel = layout == ChannelLayout::grey ? 1 : 4;
    const std::uint64_t stride =
        width <= largestWidth ? (width * bytesPerPixel + 3) / 4 * 4 : largestSize;
    if (width > largestWidth || height > largestSize / stride) {
        throw Failure("the picture is too large (" + size +
                      " pixels; its pixels must fit in 4 GiB); make it smaller first");
    }
    return static_cast<std::size_t>(stride * height);
}

}  // namespace

Photo::Photo(std::uint64_t width, std::uint64_t height, ChannelLayout layout)
    : width_(0),
      height_(0),
      layout_(layout),
      pixels_(checkedSize(width, height, layout)),
      stride_(0) {
    width_ = static_cast<std::uint32_t>(width);
    height_ = static_cast<std::uint32_t>(height);
    stride_ = pixels_.size() / height_;
}

}  // namespace keladjust::app
