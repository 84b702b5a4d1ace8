#ifndef KELADJUST_FILTERS_SPANS_SPANS_H
#define KELADJUST_FILTERS_SPANS_SPANS_H

#include <cstddef>
#include <cstdint>

#include "ImageFormat/PixelSpan.h"
#include "filters/ColourRanges.h"

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

/// Where the coefficient of a tonal stage is large.
enum class Tones { bright, dark };

/// Lifts that keep the low byte of the result.
void liftWrapping(PixelSpan& span, Tones tones, float amount);
/// Lifts that clamp.
void liftClamped(PixelSpan& span, Tones tones, float amount);
/// Lifts bright tones, a second time where that brightens, and clamps.
void liftTwice(PixelSpan& span, float amount);

/// Moves channels away from the pixel's lightness (`amount` >= 0) or towards it.
void stretchSaturation(PixelSpan& span, float amount);

/// Shifts red and blue against green by `strength` 256ths of the grey level.
void shiftTint(PixelSpan& span, std::int32_t strength);

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
void stretchVibrance(PixelSpan& span, float amount);

/// Adds the grain of the pixels from number `firstPixel` on, `scale` times as strong as its
/// formula, to the first `channels` lanes of blue, green and red.
void addGrain(PixelSpan& span, std::size_t channels, std::size_t firstPixel, float scale);

/// Gives a picture's `original` lightness the hue and the saturation of what `span` holds, by the
/// 8-bit HSL of CxImage.
void restoreLightness(PixelSpan& span, const PixelSpan& original);

/// The hue, saturation and lightness steps of a colour range.
void changeColourRange(PixelSpan& span, const HueBand& band, const RangeChange& change);

}  // namespace keladjust::spans

#endif
