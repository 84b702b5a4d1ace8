#ifndef KELADJUST_WALKS_SCALEBYFOURS_H
#define KELADJUST_WALKS_SCALEBYFOURS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "walks/ByteScale.h"

namespace keladjust {

/// Scales every first, second, third and fourth byte by a gain of its own.
void scaleByFours(std::uint8_t* row, std::size_t bytes, const std::array<ByteScale, 4>& gains);

}  // namespace keladjust

#endif
