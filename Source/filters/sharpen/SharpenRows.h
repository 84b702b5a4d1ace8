#ifndef KELADJUST_FILTERS_SHARPEN_SHARPENROWS_H
#define KELADJUST_FILTERS_SHARPEN_SHARPENROWS_H

#include <cstddef>
#include <cstdint>

/// The Laplacian along a row, compiled for every instruction set and chosen when it runs. All of
/// them give the same bytes. The fourth byte of pixels of four is alpha and stays.
namespace keladjust {

/// middle + strength * (4 * middle - its four neighbours), clamped; the neighbours along the row
/// are read one pixel before it and one behind it. The target may be none of the rows it is made
/// from.
void sharpenRow(const std::uint8_t* above, const std::uint8_t* middle, const std::uint8_t* below,
                std::size_t bytes, std::size_t pixelBytes, float strength, std::uint8_t* target);

}  // namespace keladjust

#endif
