#ifndef KELADJUST_IMAGEFORMAT_PIXELSPAN_H
#define KELADJUST_IMAGEFORMAT_PIXELSPAN_H

#include <keladjust/CxImage.h>

#include <cstddef>
#include <cstdint>

namespace keladjust {

/// How the pixels of an image lie in memory: the pairs of format and depth that have a meaning.
enum class PixelLayout { none, gray8, rgb16, bgr16, rgb24, bgr24, rgba32, bgra32 };

/// PixelLayout::none for a pair whose pixels read as zero and ignore writes.
PixelLayout layoutOf(const CxImage& image);

constexpr std::size_t bytesPerPixelOf(PixelLayout layout) {
    switch (layout) {
        case PixelLayout::gray8:
            return 1;
        case PixelLayout::rgb16:
        case PixelLayout::bgr16:
            return 2;
        case PixelLayout::rgb24:
        case PixelLayout::bgr24:
            return 3;
        case PixelLayout::rgba32:
        case PixelLayout::bgra32:
            return 4;
        case PixelLayout::none:
            break;
    }
    return 0;
}

/// True if red is the first channel of a pixel whose channels are bytes.
constexpr bool redFirst(PixelLayout layout) {
    return layout == PixelLayout::rgb24 || layout == PixelLayout::rgba32;
}

/// A run of pixels of one row as planar lanes, whatever the layout they came from. Alpha stays in
/// the picture: no stage changes it.
struct PixelSpan {
    /// Three lanes of this length stay in the first-level cache with room for a kernel's tables.
    static constexpr std::size_t capacity = 2048;

    unsigned x = 0;         ///< column of the first pixel
    unsigned y = 0;         ///< row
    std::size_t count = 0;  ///< pixels in the lanes
    alignas(64) std::uint8_t red[capacity] = {};
    alignas(64) std::uint8_t green[capacity] = {};
    alignas(64) std::uint8_t blue[capacity] = {};
};

/// Fills the lanes with `span.count` pixels, as CxImage::GetPixelColor() reads them.
void loadSpan(PixelLayout layout, const std::uint8_t* pixels, PixelSpan& span);

/// Writes the lanes back, as CxImage::SetPixelColor() does, leaving alpha as it is.
void storeSpan(PixelLayout layout, const PixelSpan& span, std::uint8_t* pixels);

/// Alpha of `count` pixels, as CxImage::GetPixelColor() reads it.
void loadAlpha(PixelLayout layout, const std::uint8_t* pixels, std::size_t count,
               std::uint8_t* alpha);

/// True if a stored span reads back as it was: not for grey, which keeps only red, and not for 16
/// bits.
constexpr bool storesLanesWhole(PixelLayout layout) {
    return bytesPerPixelOf(layout) >= 3;
}

}  // namespace keladjust

#endif
