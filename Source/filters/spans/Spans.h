#ifndef KELADJUST_FILTERS_SPANS_SPANS_H
#define KELADJUST_FILTERS_SPANS_SPANS_H

#include <cstdint>

#include "ImageFormat/PixelSpan.h"
#include "filters/ColourRanges.h"

/// The inner loops of the per-pixel stages, compiled for every instruction set and chosen when they
/// run. All of them give the same bytes; the stages' own files say what the numbers mean.
namespace keladjust::spans {

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

/// Saturation for dull colours; `amount` as a share.
void stretchVibrance(PixelSpan& span, float amount);

/// Gives a picture's `original` lightness the hue and the saturation of what `span` holds, by the
/// 8-bit HSL of CxImage.
void restoreLightness(PixelSpan& span, const PixelSpan& original);

/// The hue, saturation and lightness steps of a colour range.
void changeColourRange(PixelSpan& span, const HueBand& band, const RangeChange& change);

}  // namespace keladjust::spans

#endif
