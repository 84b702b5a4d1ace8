// Diffuse: a gain and, for positive settings, a slight blur.

#include <cmath>
#include <cstdint>
#include <optional>

#include "arithmetic/Angle.h"
#include "arithmetic/Rounding.h"
#include "filters/blur/SmallBlur.h"
#include "filters/blur/StackBlur.h"
#include "walks/ByteScale.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

// 1 + |sin(setting * pi / 1440)|, by way of the cosine. The cosine is taken in double and narrowed
// once, so that C libraries agree on it.
float diffuseGain(float setting) {
    const float angle = 1.5707964f - setting * 3.1415927f / 1440.0f;
    return std::fabs(static_cast<float>(cosineOf(static_cast<double>(angle)))) + 1.0f;
}

void applyDiffuse(const Picture& picture, float setting) {
    const RawWalk walk = rawWalkOf(picture);
    const float gain = diffuseGain(setting);
    ByteTable table;
    for (unsigned in = 0; in < table.size(); ++in) {
        table[in] = clampToByte(static_cast<float>(in) * gain);
    }
    // Only positive settings blur.
    const auto rows = setting > 0.0f ? stackBlurRows(picture.first, picture.width, picture.height,
                                                     walk.step, SmallBlur::radius)
                                     : std::nullopt;
    if (!rows) {
        mapRawWalk(picture, table);
        return;
    }
    // Along padded rows the gain changes the padding, too, which the blur does not see.
    const bool padded = rows->stride != rows->bytes;
    const auto scale = padded ? std::nullopt : byteScaleOf(table);
    const bool addsShare = scale && scale->whole == 1;
    SmallBlur blur(*rows, walk.step, addsShare ? std::optional(scale->fraction) : std::nullopt);
    if (!addsShare) mapRawWalk(picture, table);
    blur.run();
}

}  // namespace

}  // namespace keladjust

CxImage* diffuse(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        if (amount != 0.0f) keladjust::applyDiffuse(picture, amount);
    });
}
