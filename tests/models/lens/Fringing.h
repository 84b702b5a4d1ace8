#ifndef KELADJUST_TESTS_MODELS_LENS_FRINGING_H
#define KELADJUST_TESTS_MODELS_LENS_FRINGING_H

#include <keladjust/CxImage.h>

#include <cmath>

#include "models/lens/Coordinates.h"

namespace keladjust::test {

inline void fringingModel(CxImage& image, float setting) {
    if (setting == 0) return;
    CxImage source;
    source.Copy(&image);
    const float f = setting / 100.0f;
    const float off = f * 0.03f;
    const float scale = 1.0f + off;
    const auto W = static_cast<float>(image.width);
    const auto H = static_cast<float>(image.height);
    const auto cx = static_cast<float>(image.width / 2);
    const auto cy = static_cast<float>(image.height / 2);
    const float v = f > 0 ? 2.0f : 1.0f;
    const auto place = [](float value, float last) {
        if (value != value) return 0;
        if (value < 0) value = 0;
        return shortOf(value >= last ? last : value);
    };
    for (int y = 0; y < static_cast<int>(image.height); ++y) {
        for (int x = 0; x < static_cast<int>(image.width); ++x) {
            const float ny = (static_cast<float>(y) - cy) / H;
            const float nx = (static_cast<float>(x) - cx) / W;
            const float len = std::sqrt(ny * ny + nx * nx);
            const float ux = len == 0 ? 0 : nx / len;
            const float uy = len == 0 ? 0 : ny / len;
            const float len10 = len * len * len * len * len * len * len * len * len * len;
            const float nd = (len10 * f + len) * scale;
            const auto blue =
                source.GetPixelColor(place((1.0f - off) * ux * nd * W + cx, W - v),
                                     place((1.0f - off) * uy * nd * H + cy, H - v), true);
            const auto green = source.GetPixelColor(place(ux * nd * W + cx, W - v),
                                                    place(uy * nd * H + cy, H - v), true);
            const auto red =
                source.GetPixelColor(place((1.0f + off) * ux * nd * W + cx, W - v),
                                     place((1.0f + off) * uy * nd * H + cy, H - v), true);
            image.SetPixelColor(x, y, {blue.blue, green.green, red.red, green.alpha});
        }
    }
}

}  // namespace keladjust::test

#endif
