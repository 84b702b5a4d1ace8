#ifndef KELADJUST_FILTERS_ROWS_ROWS_H
#define KELADJUST_FILTERS_ROWS_ROWS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "filters/ByteScale.h"

/// The inner loops of the stages that look at neighbours, over rows of bytes, compiled for every
/// instruction set and chosen when they run. All of them give the same bytes. The fourth byte of
/// pixels of four is alpha and stays.
namespace keladjust::rows {

/// Scales every first, second, third and fourth byte by a gain of its own.
void scaleByFours(std::uint8_t* row, std::size_t bytes, const std::array<ByteScale, 4>& gains);

/// The complement of every byte, before which complementScaled() brightens colours by `gain`.
void complement(const std::uint8_t* row, std::size_t bytes, std::uint8_t* out);
void complementScaled(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                      ByteScale gain, std::uint8_t* out);

/// A Stack Blur of radius 1 along a row; in and out are complements. Reads one pixel before the row
/// and one behind it.
void smallBlurAlong(const std::uint8_t* complements, std::size_t bytes, std::size_t pixelBytes,
                    std::uint8_t* out);

/// A Stack Blur of radius 1 across three rows of complements; what comes out is none.
void smallBlurAcross(const std::uint8_t* above, const std::uint8_t* middle,
                     const std::uint8_t* below, std::size_t bytes, std::size_t pixelBytes,
                     std::uint8_t* out);

/// middle + strength * (4 * middle - its four neighbours), clamped; the neighbours along the row
/// are read one pixel before it and one behind it. The target may be none of the rows it is made
/// from.
void sharpenRow(const std::uint8_t* above, const std::uint8_t* middle, const std::uint8_t* below,
                std::size_t bytes, std::size_t pixelBytes, float strength, std::uint8_t* target);

}  // namespace keladjust::rows

#endif
