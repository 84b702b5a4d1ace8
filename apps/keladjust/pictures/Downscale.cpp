#include "pictures/Downscale.h"

#include <algorithm>

namespace keladjust::app {

namespace {

struct Block {
    std::uint32_t left;
    std::uint32_t top;
    std::uint32_t width;
    std::uint32_t height;
};

void average(const Photo& source, const Block& block, unsigned char* target) {
    const std::uint64_t count = std::uint64_t{block.width} * block.height;
    for (std::size_t channel = 0; channel < source.bytesPerPixel(); ++channel) {
        std::uint64_t sum = count / 2;
        for (std::uint32_t y = 0; y < block.height; ++y) {
            for (std::uint32_t x = 0; x < block.width; ++x) {
                sum += source.pixel(block.left + x, block.top + y)[channel];
            }
        }
        // A block has at least one pixel, which the analyzer cannot see.
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
        target[channel] = static_cast<unsigned char>(sum / count);
    }
}

}  // namespace

Photo downscaled(const Photo& photo, std::uint32_t longest) {
    const std::uint32_t side = std::max(photo.width(), photo.height());
    const std::uint32_t size = (side - 1) / longest + 1;
    Photo small((photo.width() - 1) / size + 1, (photo.height() - 1) / size + 1, photo.layout());
    small.hasAlpha = photo.hasAlpha;
    for (std::uint32_t y = 0; y < small.height(); ++y) {
        for (std::uint32_t x = 0; x < small.width(); ++x) {
            const Block block{x * size, y * size, std::min(size, photo.width() - x * size),
                              std::min(size, photo.height() - y * size)};
            average(photo, block, small.pixel(x, y));
        }
    }
    return small;
}

}  // namespace keladjust::app
