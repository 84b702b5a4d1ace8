#ifndef KELADJUST_TESTS_MODELS_CONTRAST_CONTRAST_H
#define KELADJUST_TESTS_MODELS_CONTRAST_CONTRAST_H

#include "models/Scalars.h"

/// Contrast, byte by byte and in tables.
namespace keladjust::test {

/// The levels between which contrast stretches, in the arithmetic of the form.
template <class Number>
struct ContrastWindow {
    Number low;
    Number high = 255 - low;
    Number range = low < 0 ? 2 * low + 255 : 255 - 2 * low;

    explicit ContrastWindow(Number lower) : low(lower) {
        if (high < low) {
            low = 120;
            high = 127;
            range = 15;
        } else if (low < -127) {
            low = -120;
            range = 15;
        }
    }
};

inline float contrastLow(float setting) {
    return (setting > 0 ? 1.0f / (1.0f - setting / 255.0f) - 1.0f : setting / 255.0f) * 100.0f *
           0.5f;
}

inline int contrastModel(float setting, int c) {
    // In 64 bits nothing wraps; only where the window leaves 32 bits could that matter, and there
    // it ends in one of the two fixed ones either way.
    const auto [low, high, range] = ContrastWindow<long long>(wholeOf(contrastLow(setting)));
    if (low < 1) return static_cast<int>(c * range / 255 - low);
    if (c <= low) return 0;
    return c <= high ? static_cast<int>((c - low) * 255 / range) : 255;
}

/// The window unrounded; nothing is clamped.
inline Floats contrastTableModel(float setting, Floats in) {
    auto [low, high, range] = ContrastWindow<float>(contrastLow(setting));
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
