#ifndef KELADJUST_FUZZ_SUPPORT_CHOICES_H
#define KELADJUST_FUZZ_SUPPORT_CHOICES_H

#include <fuzzer/FuzzedDataProvider.h>
#include <keladjust/CxImage.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "filters/Stage.h"

/// What the targets make of a fuzzer's bytes. An input that ends early goes on with zeros.
namespace keladjust::fuzz {

/// Any float, NaN, infinities and denormals among them.
float anyFloat(FuzzedDataProvider& input);

/// One of the catalogue.
const Stage& chooseStage(FuzzedDataProvider& input);

/// Puts something into each of a stage's slots: a value of the useful range, the identity, or any
/// bits at all.
void chooseSettings(FuzzedDataProvider& input, const Stage& stage, _AdjustParam& record);

/// A record with the settings of up to three stages, or now and then of all.
/// @param choose one of those that the target looks at
_AdjustParam chooseRecord(FuzzedDataProvider& input, const Stage& (*choose)(FuzzedDataProvider&));

/// A stage's name and settings, for reports.
std::string textOf(const Stage& stage, const _AdjustParam& record);

/// Where stages without a row in the catalogue have their settings: behind the integer slot.
inline constexpr int firstLooseSlot = 1;

/// Puts numbers into the slots from firstLooseSlot on.
void chooseLooseSettings(FuzzedDataProvider& input, std::size_t count, _AdjustParam& record);

/// A picture's measures, and its buffer with the padding.
struct ChosenPicture {
    unsigned width;
    unsigned height;
    unsigned bpp;
    _ImagePixelFormat format;
    std::vector<std::uint8_t> bytes;
};

/// Mostly a small picture of one of the pairs of depth and format that mean something; now and then
/// one that has none, is up to 70 pixels a side, or is large enough for several threads.
ChosenPicture choosePicture(FuzzedDataProvider& input);

}  // namespace keladjust::fuzz

#endif
