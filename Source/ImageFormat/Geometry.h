#ifndef KELADJUST_IMAGEFORMAT_GEOMETRY_H
#define KELADJUST_IMAGEFORMAT_GEOMETRY_H

#include <keladjust/CxImage.h>

#include <cstdint>
#include <limits>

namespace keladjust {

/// 1, 2, 3 or 4 for the four depths that have a meaning, 0 for any other.
constexpr unsigned bytesPerPixelOf(unsigned bpp) {
    switch (bpp) {
        case 8:
            return 1;
        case 16:
            return 2;
        case 24:
            return 3;
        case 32:
            return 4;
        default:
            return 0;
    }
}

/// Bytes of a row with its padding to a multiple of four.
constexpr std::uint64_t paddedRowBytes(std::uint64_t bytes) {
    return (bytes + 3) / 4 * 4;
}

/// The same of so many pixels, without the 32-bit limit of the image's own arithmetic.
constexpr std::uint64_t exactRowBytes(unsigned width, unsigned bpp) {
    // At most 2^64 - 2^33 + 8: no overflow here either.
    return paddedRowBytes((static_cast<std::uint64_t>(width) * bpp + 7) / 8);
}

/// As the image's own arithmetic has it, which is 32 bits wide and wraps for absurd sizes.
constexpr unsigned wrappedRowBytes(unsigned width, unsigned bpp) {
    return ((width * bpp + 31) >> 5) << 2;
}

/// True if rows and whole buffer can be addressed in 32 bits.
constexpr bool sizeFits(unsigned width, unsigned height, unsigned bpp) {
    constexpr std::uint64_t limit = std::numeric_limits<std::uint32_t>::max();
    // The bits of a row are counted in 32 bits, too.
    if (static_cast<std::uint64_t>(width) * bpp + 31 > limit) return false;
    return exactRowBytes(width, bpp) * height <= limit;
}

/// True for an image that holds pixels, all of them inside its buffer. An adopted buffer with a
/// size that wraps at 32 bits counts as none.
inline bool hasPixels(const CxImage* image) {
    return image != nullptr && image->pBits != nullptr && image->width != 0 && image->height != 0 &&
           sizeFits(image->width, image->height, image->bpp);
}

}  // namespace keladjust

#endif
