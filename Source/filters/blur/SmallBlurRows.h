#ifndef KELADJUST_FILTERS_BLUR_SMALLBLURROWS_H
#define KELADJUST_FILTERS_BLUR_SMALLBLURROWS_H

#include <cstddef>
#include <cstdint>

/// The two passes of a Stack Blur of radius 1 over rows of bytes, compiled for every instruction
/// set and chosen when they run. All of them give the same bytes. The fourth byte of pixels of four
/// is alpha and stays.
namespace keladjust {

/// The complement of every byte, to which colours have had `share` 65536ths of themselves added.
void complementBrightened(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                          std::uint16_t share, std::uint8_t* out);

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

}  // namespace keladjust

#endif
