// Grain: grey noise of a fixed pattern. Diffuse: a gain and, for positive settings, a slight blur.

#include <keladjust/CxImage.h>

#include <cmath>
#include <cstdint>
#include <optional>

#include "arithmetic/Angle.h"
#include "arithmetic/Rounding.h"
#include "filters/blur/SmallBlur.h"
#include "filters/blur/StackBlur.h"
#include "filters/spans/Spans.h"
#include "platform/Parallel.h"
#include "walks/ByteScale.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"
#include "walks/ThreadShare.h"

namespace keladjust {

namespace {

void addGrain(CxImage& image, float amount, float size) {
    const float scale = size / 100.0f * (amount / 100.0f);
    const RawWalk walk = rawWalkOf(image);
    if (walk.channels == 0) return;
    platform::parallelBands(
        walk.count, platform::bandCount(walk.count, pixelsPerThread),
        [&](std::size_t, std::size_t begin, std::size_t end) {
            if (walk.step == 4) {
                spans::addGrainInPlace(walk.first + 4 * begin, end - begin, begin, scale);
                return;
            }
            changeRuns(walk, begin, end, [&](std::size_t first, PixelSpan& span) {
                spans::addGrain(span, walk.channels, first, scale);
            });
        });
}

// 1 + |sin(setting * pi / 1440)|, by way of the cosine. The cosine is taken in double and narrowed
// once, so that C libraries agree on it.
float diffuseGain(float setting) {
    const float angle = 1.5707964f - setting * 3.1415927f / 1440.0f;
    return std::fabs(static_cast<float>(cosineOf(static_cast<double>(angle)))) + 1.0f;
}

void applyDiffuse(CxImage& image, float setting) {
    const RawWalk walk = rawWalkOf(image);
    if (walk.channels == 0) return;
    const float gain = diffuseGain(setting);
    ByteTable table;
    for (unsigned in = 0; in < table.size(); ++in) {
        table[in] = clampToByte(static_cast<float>(in) * gain);
    }
    // Only positive settings blur.
    const auto rows = setting > 0.0f ? stackBlurRows(image.pBits, image.width, image.height,
                                                     walk.step, SmallBlur::radius)
                                     : std::nullopt;
    if (!rows) {
        mapRawWalk(image, table);
        return;
    }
    // Along padded rows the gain changes the padding, too, which the blur does not see.
    const bool padded = rows->stride != rows->bytes;
    const auto scale = padded ? std::nullopt : byteScaleOf(table);
    SmallBlur blur(*rows, walk.step, scale);
    if (!scale) mapRawWalk(image, table);
    blur.run();
}

}  // namespace

}  // namespace keladjust

CxImage* addNoiseFilter(CxImage* image, float amount, float size) {
    return keladjust::exportedForm(image, [&] {
        if (image == nullptr || amount == 0.0f || size == 0.0f) return;
        keladjust::addGrain(*image, amount, size);
    });
}

CxImage* diffuse(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&] {
        if (image != nullptr && amount != 0.0f) keladjust::applyDiffuse(*image, amount);
    });
}
