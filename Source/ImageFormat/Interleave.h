#ifndef KELADJUST_IMAGEFORMAT_INTERLEAVE_H
#define KELADJUST_IMAGEFORMAT_INTERLEAVE_H

#include <cstddef>
#include <cstdint>

/// Pixels of interleaved bytes to planar lanes, or to pixels of four bytes, and back, compiled for
/// every instruction set.
namespace keladjust {

/// Fills the lanes of the first three bytes of a pixel, in their order in memory, from `count`
/// pixels of `step` bytes, at least 3. Pixels of more than 4 are rare and go one by one.
void deinterleave(const std::uint8_t* pixels, std::size_t step, std::size_t count,
                  std::uint8_t* first, std::uint8_t* second, std::uint8_t* third);

/// Writes the lanes back; what a pixel has beside them stays as it is.
void interleave(const std::uint8_t* first, const std::uint8_t* second, const std::uint8_t* third,
                std::size_t step, std::size_t count, std::uint8_t* pixels);

/// Makes pixels of `step` bytes, 3 or 4, ones of four: blue, green, red and what was the fourth, or
/// 0.
void packPixels(const std::uint8_t* pixels, std::size_t step, bool redFirst, std::size_t count,
                std::uint8_t* packed);

/// The way back.
void unpackPixels(const std::uint8_t* packed, std::size_t step, bool redFirst, std::size_t count,
                  std::uint8_t* pixels);

}  // namespace keladjust

#endif
