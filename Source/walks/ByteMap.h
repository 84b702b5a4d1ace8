#ifndef KELADJUST_WALKS_BYTEMAP_H
#define KELADJUST_WALKS_BYTEMAP_H

#include <cstddef>
#include <cstdint>

#include "walks/ByteRamp.h"
#include "walks/PixelKernel.h"

/// Tables on their way over bytes, compiled for every instruction set and chosen when they run. All
/// of them give the same bytes.
namespace keladjust {

/// Which bytes of a run are mapped.
enum class MappedBytes {
    all,
    threeOfFour,  ///< of pixels of four bytes, the fourth of which stays
};

/// Maps the `count` bytes; `count` is in whole pixels where that matters.
void mapBytes(const ByteTable& table, MappedBytes which, std::uint8_t* bytes, std::size_t count);

/// The same by a ramp.
void rampBytes(const ByteRamp& ramp, MappedBytes which, std::uint8_t* bytes, std::size_t count);

}  // namespace keladjust

#endif
