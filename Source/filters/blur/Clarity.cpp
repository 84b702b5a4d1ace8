// Clarity: local contrast, every channel pushed away from its Stack Blur or drawn to it.

#include <cmath>
#include <cstddef>

#include "arithmetic/Rounding.h"
#include "filters/blur/StackBlur.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

struct ClarityConstants {
    explicit ClarityConstants(float setting)
        : active(setting != 0.0f), factor(setting / 200.0f), radius(radiusOf(setting)) {}

    // 0, which blurs nothing, for settings that are too weak or too strong: pixels, at no distance
    // from themselves, then stay as they are.
    static int radiusOf(float setting) {
        const float strength = std::fabs(setting);
        if (!(strength > 2.0f && strength < 254.0f)) return 0;
        return truncateToInt(setting > 0.0f ? setting * 0.5f : 2.0f);
    }

    bool active;
    float factor;
    int radius;
};

void applyClarity(const Picture& picture, const ClarityConstants& constants) {
    const RawWalk walk = rawWalkOf(picture);
    const auto rows =
        stackBlurRows(picture.first, picture.width, picture.height, walk.step, constants.radius);
    if (rows) {
        // Where rows are padded the walk ends before the buffer does: the last pixels stay blurred.
        StackBlur(*rows, walk.step, static_cast<std::size_t>(constants.radius))
            .run(walk.count * walk.step, constants.factor);
    } else if (!std::isfinite(constants.factor)) {
        // No distance times no number at all.
        mapRawWalk(picture, ByteTable{});
    }
}

}  // namespace

}  // namespace keladjust

CxImage* clarity(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        const keladjust::ClarityConstants constants(amount);
        if (constants.active) keladjust::applyClarity(picture, constants);
    });
}
