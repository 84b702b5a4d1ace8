#ifndef KELADJUST_TESTS_MODELS_BLUR_DIFFUSE_H
#define KELADJUST_TESTS_MODELS_BLUR_DIFFUSE_H

#include <keladjust/CxImage.h>

#include <cmath>

#include "arithmetic/Angle.h"
#include "models/RawPixels.h"
#include "models/Scalars.h"
#include "models/blur/StackBlur.h"

namespace keladjust::test {

inline void diffuseModel(CxImage& image, float setting) {
    if (setting == 0) return;
    const float angle = 1.5707964f - setting * 3.1415927f / 1440.0f;
    const float gain = std::fabs(static_cast<float>(cosineOf(static_cast<double>(angle)))) + 1.0f;
    mapRawPixels(image, [&](int c) { return clampByte(static_cast<float>(c) * gain); });
    if (setting > 0) blurImageModel(image, 1);
}

}  // namespace keladjust::test

#endif
