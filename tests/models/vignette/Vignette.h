#ifndef KELADJUST_TESTS_MODELS_VIGNETTE_VIGNETTE_H
#define KELADJUST_TESTS_MODELS_VIGNETTE_VIGNETTE_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "arithmetic/Angle.h"
#include "models/Scalars.h"

namespace keladjust::test {

struct VignetteSettings {
    float amount, feather, highlights, size, roundness, exposure;
};

inline float vignetteMaskModel(int x, int y, int width, int height, const VignetteSettings& s) {
    const float cx = static_cast<float>(width / 2);
    const float cy = static_cast<float>(height / 2);
    const float sz = s.size / 100.0f;
    float a = cx * 0.2f * (sz * 4.0f + 1.0f);
    float b = cy * 0.2f * (sz * 4.0f + 1.0f);
    const float diff = std::fabs(a - b) * (s.roundness / 100.0f);
    if (diff >= 0 && a > b) {
        a -= diff;
    } else if (diff >= 0 && a < b) {
        b -= diff;
    }
    const float band = std::max(a, b) * 0.5f * (s.feather / 100.0f) + 3.0f;
    const float ea = a + band;
    const float eb = b + band;
    const float dx = std::fabs(static_cast<float>(x) - cx);
    const float dy = std::fabs(static_cast<float>(y) - cy);
    if ((dx / a) * (dx / a) + (dy / b) * (dy / b) - 1.0f <= 0) return 1;
    if ((dx / ea) * (dx / ea) + (dy / eb) * (dy / eb) - 1.0f >= 0) return 0;
    const float slope = dy / (dx + 0.000001f);
    const float q = slope * slope;
    const float xx = 1.0f / (q / (eb * eb) + 1.0f / (ea * ea));
    const float r = std::sqrt(xx * q + xx);
    const float e = std::sqrt(dx * dx + dy * dy);
    const float angle = (band - (r - e)) * 3.1415927f / band;
    return (static_cast<float>(cosineOf(static_cast<double>(angle))) + 1.0f) * 0.5f;
}

inline void vignetteModel(CxImage& image, const VignetteSettings& s) {
    if (s.amount == 0 && s.exposure == 0) return;
    const float am = s.amount / 100.0f;
    const float ex = static_cast<float>(std::pow(2.0, static_cast<double>(s.exposure / 100.0f)));
    const float hi = std::fabs(am) * (s.highlights / 100.0f * 2.0f - 1.0f);
    for (int y = 0; y < static_cast<int>(image.height); ++y) {
        for (int x = 0; x < static_cast<int>(image.width); ++x) {
            const float m = vignetteMaskModel(x, y, static_cast<int>(image.width),
                                              static_cast<int>(image.height), s);
            _tagMyRGBQUAD p = image.GetPixelColor(x, y, true);
            Floats c{static_cast<float>(p.red), static_cast<float>(p.green),
                     static_cast<float>(p.blue)};
            const float rest = (1.0f - (2.0f * m - 1.0f)) * 0.5f;
            for (float& v : c) v = (am + 1.0f) * v * rest + m * ex * v;
            if (m < 1) {
                const float l =
                    (1.0f - m) * (1.0f - m) * hi * (1.0f - (c[0] + c[1] + c[2]) / 3.0f / 255.0f);
                for (float& v : c) v = 255.0f - (255.0f - l * v) * (255.0f - v) / 255.0f;
            }
            p.red = static_cast<std::uint8_t>(clampByte(c[0]));
            p.green = static_cast<std::uint8_t>(clampByte(c[1]));
            p.blue = static_cast<std::uint8_t>(clampByte(c[2]));
            image.SetPixelColor(x, y, p);
        }
    }
}

}  // namespace keladjust::test

#endif
