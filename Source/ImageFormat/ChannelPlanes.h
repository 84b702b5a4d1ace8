#ifndef KELADJUST_IMAGEFORMAT_CHANNELPLANES_H
#define KELADJUST_IMAGEFORMAT_CHANNELPLANES_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "ImageFormat/PixelSpan.h"

namespace keladjust {

enum class ColourSpace { rgb, hsl };

/// Reads a row of `width` pixels into three rows of bytes: red, green and blue as
/// CxImage::GetPixelColor() gives them, or hue, saturation and lightness of those. A null row is
/// left out.
void splitRow(PixelLayout layout, const std::uint8_t* pixels, std::size_t width, ColourSpace space,
              const std::array<std::uint8_t*, 3>& rows);

/// Writes a row of `width` pixels from three rows of bytes as CxImage::SetPixelColor() does; alpha
/// stays. A null row counts as zeros.
void joinRow(PixelLayout layout, const std::array<const std::uint8_t*, 3>& rows, std::size_t width,
             ColourSpace space, std::uint8_t* pixels);

}  // namespace keladjust

#endif
