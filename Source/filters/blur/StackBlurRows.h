#ifndef KELADJUST_FILTERS_BLUR_STACKBLURROWS_H
#define KELADJUST_FILTERS_BLUR_STACKBLURROWS_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "filters/blur/StackBlurScale.h"

/// The two passes of a Stack Blur over some rows, compiled for every instruction set and chosen
/// when they run. All of them give the same bytes. Colours of pixels of four bytes are limited to
/// alpha, which stays.
namespace keladjust {

/// Along rows the blur takes several together, turned on their side: a sample of such a tile is a
/// pixel of each row.
constexpr std::size_t tileBytes = 32;
constexpr std::size_t tileRows(std::size_t pixelBytes) {
    return pixelBytes == 1 ? 32 : 8;
}
constexpr std::size_t tileSize(std::size_t width, std::size_t radius) {
    return (width + 3 * radius + 2) * tileBytes;  // with room for repeated end samples
}

/// Blurs tileRows() rows along their length. Rows may be given several times; `blurred` may be the
/// rows themselves.
void stackBlurAlong(const std::uint8_t* const* rows, std::size_t width, std::size_t pixelBytes,
                    std::size_t radius, std::uint8_t* tile, std::uint8_t* const* blurred);

/// One row of the way down: where the blurred row goes, and what the sums take up on leaving it.
struct BlurStep {
    const std::uint8_t* incoming;  ///< radius + 1 rows below
    const std::uint8_t* middle;    ///< the row itself
    const std::uint8_t* outgoing;  ///< radius + 1 rows above
    std::uint8_t* target;          ///< null on the way to the first row
    std::size_t pushed;            ///< how many bytes of the target are pushed away from the blur
};

/// State that stackBlurAcross() carries from one call to the next, begun as zeros, which stand for
/// zeros in all rows above.
constexpr std::size_t blurStateFactor = 8;
constexpr std::size_t blurStateSize(std::size_t bytes) {
    return (bytes + 31) / 32 * 32 * blurStateFactor;
}

/// Blurs rows of bytes downwards. `pushed` bytes become (old - blurred) * factor + old.
void stackBlurAcross(std::span<const BlurStep> steps, std::size_t bytes, std::size_t pixelBytes,
                     std::size_t radius, float factor, std::uint8_t* state);

}  // namespace keladjust

#endif
