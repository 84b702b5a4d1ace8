#ifndef KELADJUST_FILTERS_ROWS_ROWS_H
#define KELADJUST_FILTERS_ROWS_ROWS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "walks/ByteScale.h"

/// The inner loops of the stages that look at neighbours, over rows of bytes, compiled for every
/// instruction set and chosen when they run. All of them give the same bytes. The fourth byte of
/// pixels of four is alpha and stays.
namespace keladjust::rows {

/// Scales every first, second, third and fourth byte by a gain of its own.
void scaleByFours(std::uint8_t* row, std::size_t bytes, const std::array<ByteScale, 4>& gains);

/// The complement of every byte, before which colours are brightened by `gain`.
void complementScaled(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                      ByteScale gain, std::uint8_t* out);

/// A row on its way through a Stack Blur of radius 1: blurred along its length, and with that the
/// row above it across.
struct BlurRow {
    const std::uint8_t* bytes;
    bool complement;            ///< of the bytes is what is blurred; else they are complements
    const std::uint8_t* above;  ///< the two rows before, blurred along: complements
    const std::uint8_t* middle;
    std::uint8_t* below;   ///< becomes what the row is along
    std::uint8_t* target;  ///< becomes the middle row across, no complement; may be null
};
void smallBlurRow(const BlurRow& row, std::size_t bytes, std::size_t pixelBytes);

/// middle + strength * (4 * middle - its four neighbours), clamped; the neighbours along the row
/// are read one pixel before it and one behind it. The target may be none of the rows it is made
/// from.
void sharpenRow(const std::uint8_t* above, const std::uint8_t* middle, const std::uint8_t* below,
                std::size_t bytes, std::size_t pixelBytes, float strength, std::uint8_t* target);

}  // namespace keladjust::rows

#endif
