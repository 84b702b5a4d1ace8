#ifndef KELADJUST_TESTS_MODELS_EXPOSURE_EXPOSURE_H
#define KELADJUST_TESTS_MODELS_EXPOSURE_EXPOSURE_H

#include <cmath>

#include "models/Scalars.h"

/// Exposure, byte by byte and in tables.
namespace keladjust::test {

inline float exposureFactor(float exposure) {
    return static_cast<float>(std::exp2(double{exposure / 50.0f * 0.6f}));
}

inline Bytes exposureModel(float exposure, Bytes in) {
    const float factor = exposureFactor(exposure);
    for (int& c : in) c = clampByte(static_cast<float>(c) * factor);
    return in;
}

inline Floats exposureTableModel(float exposure, Floats in) {
    const float factor = exposureFactor(exposure);
    for (float& c : in) c = clampUnit(c * factor);
    return in;
}

}  // namespace keladjust::test

#endif
