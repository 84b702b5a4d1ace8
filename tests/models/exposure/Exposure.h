#ifndef KELADJUST_TESTS_MODELS_EXPOSURE_EXPOSURE_H
#define KELADJUST_TESTS_MODELS_EXPOSURE_EXPOSURE_H

#include <cmath>

#include "models/Scalars.h"

/// Exposure, byte by byte.
namespace keladjust::test {

inline Bytes exposureModel(float exposure, Bytes in) {
    const auto factor = static_cast<float>(std::exp2(double{exposure / 50.0f * 0.6f}));
    for (int& c : in) c = clampByte(static_cast<float>(c) * factor);
    return in;
}

}  // namespace keladjust::test

#endif
