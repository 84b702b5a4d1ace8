#ifndef KELADJUST_FILTERS_WHITE_BALANCE_BRIGHTPIXELS_H
#define KELADJUST_FILTERS_WHITE_BALANCE_BRIGHTPIXELS_H

#include <cstddef>
#include <cstdint>

#include "ImageFormat/PixelSpan.h"

namespace keladjust {

/// The places of those pixels whose channels sum up to at least `leastSum`, in their order; how
/// many there are.
std::size_t placesOfBright(const PixelSpan& span, unsigned leastSum, std::uint16_t* places);

}  // namespace keladjust

#endif
