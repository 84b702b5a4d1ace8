#ifndef KELADJUST_FILTERS_SPANS_SPANS_H
#define KELADJUST_FILTERS_SPANS_SPANS_H

#include <cstddef>
#include <cstdint>

#include "ImageFormat/PackedSpan.h"
#include "ImageFormat/PixelSpan.h"
#include "filters/colour-ranges/ColourRanges.h"
#include "walks/ByteRamp.h"
#include "walks/ColourKernel.h"

/// The inner loops of the per-pixel stages, compiled for every instruction set and chosen when they
/// run. All of them give the same bytes; the stages' own files say what the numbers mean.
namespace keladjust::spans {

/// Which bytes of a run a table maps.
enum class Bytes {
    all,
    threeOfFour,  ///< of pixels of four bytes, the fourth of which stays
};

/// Maps the `count` bytes by a table of 256; `count` is in whole pixels where that matters.
void mapBytes(const std::uint8_t* table, Bytes which, std::uint8_t* bytes, std::size_t count);

/// The same by a ramp.
void rampBytes(const ByteRamp& ramp, Bytes which, std::uint8_t* bytes, std::size_t count);

/// Where the coefficient of a tonal stage is large.
enum class Tones { bright, dark };

/// Lifts that keep the low byte of the result.
void liftWrapping(PackedSpan& span, Tones tones, float amount);
/// Lifts that clamp.
void liftClamped(PackedSpan& span, Tones tones, float amount);
/// Lifts bright tones, a second time where that brightens, and clamps.
void liftTwice(PackedSpan& span, float amount);

/// Moves channels away from the pixel's lightness (`amount` >= 0) or towards it.
void stretchSaturation(PackedSpan& span, float amount);

/// Shifts red and blue against green by `strength` 256ths of the grey level.
void shiftTint(PackedSpan& span, std::int32_t strength);

/// A rotation of colours about the grey axis: each row of the matrix works on the channels as the
/// rows before have left them, blue first and red last.
struct HueMatrix {
    float m00;
    float diagonal;
    float minus;
    float plus;
};
void rotateHue(PixelSpan& span, const HueMatrix& matrix);

/// Saturation for dull colours; `amount` as a share.
void stretchVibrance(PackedSpan& span, float amount);

/// Adds the grain of the pixels from number `firstPixel` on, `scale` times as strong as its
/// formula, to the first `channels` lanes of blue, green and red.
void addGrain(PixelSpan& span, std::size_t channels, std::size_t firstPixel, float scale);
/// The same to the first three bytes of `count` pixels of four.
void addGrainInPlace(std::uint8_t* pixels, std::size_t count, std::size_t firstPixel, float scale);

/// The places of those pixels whose channels sum up to at least `leastSum`, in their order; how
/// many there are.
std::size_t placesOfBright(const PixelSpan& span, unsigned leastSum, std::uint16_t* places);

/// A colour to multiply by, channels as shares, and how much of the product counts.
struct ColourBlend {
    float red;
    float green;
    float blue;
    float strength;  ///< finite
};

/// Blends the pixels with the colour and then, by the 8-bit HSL of CxImage, gives them back the
/// lightness that they had.
void blendKeepingLightness(PackedSpan& span, const ColourBlend& colour);

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

/// The hue, saturation and lightness steps of a colour range.
void changeColourRange(PackedSpan& span, const HueBand& band, const RangeChange& change);

/// The same of table colours, all within 0..1.
void changeColourRange(ColourRun& run, const HueBand& band, const RangeChange& change);

/// True only if all channels lie within 0..1.
bool isWithinUnit(const ColourRun& run);

/// Multiplies the channels, or adds to them, and clamps.
void multiply(ColourRun& run, float factor);
void offset(ColourRun& run, float amount);

/// What contrast does to table colours: makes a share of their range out of all of it, unclamped,
/// or all of it out of the part between `low` and `high`.
void squeeze(ColourRun& run, float low, float range);
void stretch(ColourRun& run, float low, float high, float range);

/// The stages above in their look-up-table forms, of table colours. A blend takes only colours
/// within 0..1.
void lift(ColourRun& run, Tones tones, float amount);
void liftTwice(ColourRun& run, float amount);
void stretchSaturation(ColourRun& run, float amount);
void shiftTint(ColourRun& run, float factor);
void stretchVibrance(ColourRun& run, float amount);
void blendKeepingLightness(ColourRun& run, const ColourBlend& colour);

}  // namespace keladjust::spans

#endif
