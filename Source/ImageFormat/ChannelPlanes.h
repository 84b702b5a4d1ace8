#ifndef KELADJUST_IMAGEFORMAT_CHANNELPLANES_H
#define KELADJUST_IMAGEFORMAT_CHANNELPLANES_H

#include <keladjust/CxImage.h>

#include <array>
#include <cstdint>

namespace keladjust {

enum class ColourSpace { rgb, hsl };

/// Reads row `y` of an image into three rows of bytes: red, green and blue as
/// CxImage::GetPixelColor() gives them, or hue, saturation and lightness of those. A null row is
/// left out.
void splitRow(const CxImage& image, unsigned y, ColourSpace space,
              const std::array<std::uint8_t*, 3>& rows);

/// Writes row `y` from three rows of bytes as CxImage::SetPixelColor() does; alpha stays. A null
/// row counts as zeros.
void joinRow(CxImage& image, unsigned y, ColourSpace space,
             const std::array<const std::uint8_t*, 3>& rows);

}  // namespace keladjust

#endif
