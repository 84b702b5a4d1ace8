#ifndef KELADJUST_IMAGEFORMAT_PACKEDSPAN_H
#define KELADJUST_IMAGEFORMAT_PACKEDSPAN_H

#include <cstddef>
#include <cstdint>

#include "ImageFormat/PixelSpan.h"

namespace keladjust {

/// A run of pixels of one row in four bytes each, blue, green, red and one that stays as it is: the
/// picture's own memory, where that is its layout, else a PackedPixels.
struct PackedSpan {
    /// This many pixels stay in the first-level cache with room for a kernel's tables.
    static constexpr std::size_t capacity = 2048;
    /// Kernels take this many pixels at a time, or a divisor of it. They may run on up to a
    /// multiple of it past the pixels that count.
    static constexpr std::size_t block = 16;

    unsigned x = 0;                  ///< column of the first pixel
    unsigned y = 0;                  ///< row
    std::size_t count = 0;           ///< pixels
    std::uint8_t* pixels = nullptr;  ///< memory for them, in whole blocks
};

/// Memory for a span whose pixels lie otherwise in their picture.
struct PackedPixels {
    alignas(64) std::uint8_t bytes[4 * PackedSpan::capacity] = {};
};

/// Fills the span with `span.count` pixels, as CxImage::GetPixelColor() reads them.
void loadSpan(PixelLayout layout, const std::uint8_t* pixels, PackedSpan& span);

/// Writes the span back, as CxImage::SetPixelColor() does, leaving alpha as it is.
void storeSpan(PixelLayout layout, const PackedSpan& span, std::uint8_t* pixels);

/// Sends the span through the layout's own store and load.
void roundTrip(PixelLayout layout, PackedSpan& span);

}  // namespace keladjust

#endif
