#ifndef KELADJUST_TESTS_MODELS_LENS_COORDINATES_H
#define KELADJUST_TESTS_MODELS_LENS_COORDINATES_H

#include <cstdint>

#include "models/Scalars.h"

namespace keladjust::test {

/// What 16 bits keep of a coordinate, truncated.
inline int shortOf(float value) {
    return static_cast<std::int16_t>(static_cast<std::uint32_t>(wholeOf(value)) & 0xFFFF);
}

}  // namespace keladjust::test

#endif
