#ifndef KELADJUST_TESTS_MODELS_COLOUR_RANGES_COLOURRANGES_H
#define KELADJUST_TESTS_MODELS_COLOUR_RANGES_COLOURRANGES_H

#include <algorithm>
#include <cstddef>

#include "models/Scalars.h"

/// One band of hues.
namespace keladjust::test {

struct Range {
    float min, max, hue, saturation, brightness;
};

// Hue (degrees), saturation, lightness.
inline Floats hslOf(Floats c) {
    const float hi = std::max({c[0], c[1], c[2]});
    const float lo = std::min({c[0], c[1], c[2]});
    if (hi == lo) return {240.0f, 0.0f, c[0]};
    const float d = hi - lo;
    const float l = (hi + lo) * 0.5f;
    const float s = l < 0.5f ? d / (hi + lo) : d / (2.0f - hi - lo);
    float h = (c[0] == hi   ? (c[1] - c[2]) / d
               : c[1] == hi ? 2.0f + (c[2] - c[0]) / d
                            : 4.0f + (c[0] - c[1]) / d) /
              6.0f;
    if (h < 0) h += 1.0f;
    return {h * 360.0f, s, l};
}

inline Floats rgbOf(Floats hsl) {
    const auto [h, s, l] = hsl;
    if (s == 0) return {l, l, l};
    const float turn = h / 360.0f;
    const float q = l < 0.5f ? l * (1.0f + s) : l + s - l * s;
    const float p = 2.0f * l - q;
    const auto channel = [p, q](float t) {
        if (t < 0.16666667f) return p + (q - p) * 6.0f * t;
        if (t < 0.5f) return q;
        if (t < 0.6666667f) return p + (q - p) * (0.6666667f - t) * 6.0f;
        return p;
    };
    float tr = turn + 0.33333334f;
    if (tr > 1) tr -= 1.0f;
    float tb = turn - 0.33333334f;
    if (tb < 0) tb += 1.0f;
    return {channel(tr), channel(turn), channel(tb)};
}

inline float weightOf(const Range& r, float h) {
    if (r.min > r.max) {
        if (h >= r.min) return (h - r.min) / (360.0f - r.min);
        if (h <= r.max) return r.max == 0 ? 1.0f : 1.0f - h / r.max;
        return 0.0f;
    }
    if (!(r.min < h && h < r.max)) return 0.0f;
    const float d = (h - r.min) * 2.0f / (r.max - r.min);
    return d <= 1 ? d : 2.0f - d;
}

/// What the changed colour is mixed with: the colour after the way through HSL and back, or as it
/// came.
enum class MixedWith { roundTrip, colour };

// One colour through the three steps; `keep` is what is stored of a channel between them.
template <class Keep>
inline Floats rangeModel(const Range& r, Floats c, Keep keep,
                         MixedWith mixedWith = MixedWith::roundTrip) {
    const float w = weightOf(r, hslOf(c)[0]);
    const auto mix = [&](auto change) {
        const Floats hsl = hslOf(c);
        const Floats from = mixedWith == MixedWith::roundTrip ? rgbOf(hsl) : c;
        const Floats to = rgbOf(change(hsl));
        for (std::size_t i = 0; i < 3; ++i) c[i] = keep((1.0f - w) * from[i] + w * to[i]);
    };
    const float shift = r.hue > 0 ? r.hue * 1.2f : r.hue;
    if (shift != 0) {
        mix([&](Floats hsl) {
            float h = hsl[0] + shift;
            if (h < 0)
                h += 360.0f;
            else if (h > 360)
                h -= 360.0f;
            return Floats{h, hsl[1], hsl[2]};
        });
    }
    if (r.saturation / 100.0f != 0) {
        mix([&](Floats hsl) {
            return Floats{hsl[0], clampUnit(hsl[1] * (1.0f + r.saturation / 100.0f)), hsl[2]};
        });
    }
    if (r.brightness / 800.0f != 0) {
        mix([&](Floats hsl) {
            return Floats{hsl[0], hsl[1],
                          clampUnit(hsl[2] * (1.0f + r.brightness / 100.0f / 8.0f))};
        });
    }
    return c;
}

inline Bytes byteModel(const Range& r, Bytes in) {
    Bytes held = in;
    std::size_t next = 0;
    Floats c{};
    for (std::size_t i = 0; i < 3; ++i) c[i] = static_cast<float>(in[i]) / 255.0f;
    rangeModel(r, c, [&](float v) {
        const int byte = clampByte(v * 255.0f);
        held[next++ % 3] = byte;
        return static_cast<float>(byte) / 255.0f;
    });
    return held;
}

}  // namespace keladjust::test

#endif
