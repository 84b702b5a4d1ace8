#ifndef KELADJUST_TESTS_MODELS_CONTRAST_CONTRAST_H
#define KELADJUST_TESTS_MODELS_CONTRAST_CONTRAST_H

#include "models/Scalars.h"

/// Contrast, byte by byte and in tables.
namespace keladjust::test {

inline float contrastWindow(float setting) {
    return (setting > 0 ? 1.0f / (1.0f - setting / 255.0f) - 1.0f : setting / 255.0f) * 100.0f *
           0.5f;
}

inline int contrastModel(float setting, int c) {
    // In 64 bits nothing wraps; only where the window leaves 32 bits could that matter, and there
    // it ends in one of the two fixed ones either way.
    long long low = wholeOf(contrastWindow(setting));
    long long high = 255 - low;
    long long range = low < 0 ? 2 * low + 255 : 255 - 2 * low;
    if (high < low) {
        low = 120;
        high = 127;
        range = 15;
    } else if (low < -127) {
        low = -120;
        range = 15;
    }
    if (low < 1) return static_cast<int>(c * range / 255 - low);
    if (c <= low) return 0;
    return c <= high ? static_cast<int>((c - low) * 255 / range) : 255;
}

/// The window unrounded; nothing is clamped.
inline Floats contrastTableModel(float setting, Floats in) {
    float low = contrastWindow(setting);
    float high = 255.0f - low;
    float range = low < 0 ? 2.0f * low + 255.0f : 255.0f - 2.0f * low;
    if (high < low) {
        low = 120;
        high = 127;
        range = 15;
    } else if (low < -127) {
        low = -120;
        range = 15;
    }
    low /= 255.0f;
    high /= 255.0f;
    range /= 255.0f;
    for (float& c : in) {
        if (low > 0) {
            c = c <= low ? 0.0f : c > high ? 1.0f : (c - low) / range;
        } else {
            c = c * range - low;
        }
    }
    return in;
}

}  // namespace keladjust::test

#endif
