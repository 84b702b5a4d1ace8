#ifndef KELADJUST_TESTS_MODELS_CONTRAST_CONTRAST_H
#define KELADJUST_TESTS_MODELS_CONTRAST_CONTRAST_H

/// Contrast, byte by byte.
namespace keladjust::test {

inline int contrastModel(float setting, int c) {
    const float v =
        (setting > 0 ? 1.0f / (1.0f - setting / 255.0f) - 1.0f : setting / 255.0f) * 100.0f * 0.5f;
    // In 64 bits nothing wraps; only where v leaves 32 bits could that matter, and there it ends in
    // one of the two fixed windows either way.
    long long low = v != v       ? 0
                    : v >= 2e9f  ? 2000000000
                    : v <= -2e9f ? -2000000000
                                 : static_cast<long long>(v);
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

}  // namespace keladjust::test

#endif
