#ifndef KELADJUST_FILTERS_VIGNETTE_VIGNETTEPIXELS_H
#define KELADJUST_FILTERS_VIGNETTE_VIGNETTEPIXELS_H

#include <cstddef>

#include "ImageFormat/PackedSpan.h"

/// The vignette over a span of pixels, compiled for every instruction set and chosen when it runs.
/// All of them give the same bytes.
namespace keladjust {

/// What the columns of a picture add to the vignette's tests of their pixels, from the span's first
/// column on; whole vectors of them may be read.
struct VignetteColumns {
    const float* inner;  ///< squared, in semi-axes of the inner ellipse
    const float* outer;  ///< squared, in semi-axes of the outer ellipse
};

/// The band between the two ellipses.
struct VignetteBand {
    float width;       ///< in pixels
    float outerWidth;  ///< semi-axes of the outer ellipse
    float outerHeight;
};

/// The masks of `count` pixels in the band whose distances from the centre along the row begin at
/// `distances`; whole vectors of these may be read.
void vignetteMasks(const VignetteBand& band, const float* distances, float rowDistance,
                   std::size_t count, float* masks);

/// The same of a row as of its columns, and the masks of the band where it crosses the left half.
/// The right half is its mirror image. Around the masks whole vectors may be read.
struct VignetteRow {
    VignetteColumns columns;
    float inner;
    float outer;
    const float* masks;
    std::ptrdiff_t firstMask;  ///< column, counted from the span's first
    std::ptrdiff_t centre;     ///< column, counted from the span's first
};

/// What it does outside the ellipses, inside, and to highlights.
struct VignetteShade {
    float outerFactor;
    float innerFactor;
    float highlights;
};

/// Shades the pixels by a mask of 1 inside the inner ellipse and 0 outside the outer one.
void applyVignette(PackedSpan& span, const VignetteRow& row, const VignetteShade& shade);

}  // namespace keladjust

#endif
