#ifndef KELADJUST_TESTS_MODELS_EXPOSURE_BRIGHTNESS_H
#define KELADJUST_TESTS_MODELS_EXPOSURE_BRIGHTNESS_H

#include "models/Scalars.h"

/// Brightness, byte by byte and in tables.
namespace keladjust::test {

inline int brightnessModel(float b, int c) {
    const float value =
        b > 0 ? b / 100.0f + 1.0f : (1.0f / (b / 253.0f + 0.99f) - 1.0f) * -255.0f * 0.6f;
    const auto channel = static_cast<float>(c);
    return clampByte(value > 0 ? channel * value : channel + value);
}

inline Floats brightnessTableModel(float b, Floats in) {
    const float value = b > 0 ? b / 100.0f + 1.0f : (1.0f - 1.0f / (b / 253.0f + 0.99f)) * 0.6f;
    for (float& c : in) c = clampUnit(value > 0 ? c * value : c + value);
    return in;
}

}  // namespace keladjust::test

#endif
