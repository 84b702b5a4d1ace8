// Clarity: local contrast, every channel pushed away from its Stack Blur or drawn to it.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>

#include "ImageFormat/RawWalk.h"
#include "filters/Rounding.h"
#include "filters/StackBlur.h"
#include "filters/StageForms.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

struct ClarityConstants {
    explicit ClarityConstants(float setting)
        : active(setting != 0.0f), factor(setting / 200.0f), radius(radiusOf(setting)) {}

    // 0, which blurs nothing, for settings that are too weak or too strong; the stage then only
    // passes pixels through its formula.
    static int radiusOf(float setting) {
        const float strength = std::fabs(setting);
        if (!(strength > 2.0f && strength < 254.0f)) return 0;
        return truncateToInt(setting > 0.0f ? setting * 0.5f : 2.0f);
    }

    bool active;
    float factor;
    int radius;
};

std::uint8_t pushAway(std::uint8_t sharp, std::uint8_t blurred, float factor) {
    const float s = sharp;
    const float b = blurred;
    return clampToByte((s - b) * factor + s);
}

void applyClarity(CxImage& image, const ClarityConstants& constants) {
    constexpr std::size_t pixelsPerThread = 1 << 15;
    const RawWalk walk = rawWalkOf(image);
    if (walk.channels == 0) return;
    StackBlur blur(image.width, image.height, walk.step, constants.radius);
    const auto sharp = std::make_unique_for_overwrite<std::uint8_t[]>(image.size);
    std::memcpy(sharp.get(), image.pBits, image.size);

    // Where rows are padded the walk ends before the buffer does: the last pixels stay blurred.
    blur.alongRows(image.pBits);
    blur.alongColumns(image.pBits);
    platform::parallelBands(
        walk.count, platform::bandCount(walk.count, pixelsPerThread),
        [&, factor = constants.factor](std::size_t, std::size_t begin, std::size_t end) {
            changeChannels(walk, begin, end, [&](std::size_t offset) {
                return pushAway(sharp[offset], walk.first[offset], factor);
            });
        });
}

}  // namespace

}  // namespace keladjust

CxImage* clarity(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&] {
        const keladjust::ClarityConstants constants(amount);
        if (image != nullptr && constants.active) keladjust::applyClarity(*image, constants);
    });
}
