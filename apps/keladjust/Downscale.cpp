#include "Downscale.h"

#include <algorithm>

namespace keladjust::app {
namespace {

void averageBlock(const Photo& source, std::uint32_t left, std::uint32_t top, std::uint32_t size,
                  unsigned char* target) {
    const std::uint32_t right = std::min(left + size, source.width());
    const std::uint32_t bottom = std::min(top + size, source.height());
    const std::uint64_t count = std::uint64_t{right - left} * (bottom - top);
    for (std::size_t channel = 0; channel < source.bytesPerPixel(); ++channel) {
        std::uint64_t sum = count / 2;
        for (std::uint32_t y = top; y < bottom; ++y) {
            for (std::uint32_t x = left; x < right; ++x) sum += source.pixel(x, y)[channel];
        }
        target[channel] = static_cast<unsigned char>(sum / count);
    }
}

}  // namespace

Photo downscaled(const Photo& photo, std::uint32_t longest) {
    const std::uint32_t side = std::max(photo.width(), photo.height());
    const std::uint32_t block = (side - 1) / longest + 1;
    Photo small((photo.width() - 1) / block + 1, (photo.height() - 1) / block + 1, photo.layout());
    small.hasAlpha = photo.hasAlpha;
    for (std::uint32_t y = 0; y < small.height(); ++y) {
        for (std::uint32_t x = 0; x < small.width(); ++x) {
            averageBlock(photo, x * block, y * block, block, small.pixel(x, y));
        }
    }
    return small;
}

}  // namespace keladjust::app
