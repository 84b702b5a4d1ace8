#ifndef KELADJUST_APP_PICTURES_DIGITFONT_H
#define KELADJUST_APP_PICTURES_DIGITFONT_H

#include <string_view>

#include "pictures/Photo.h"

namespace keladjust::app {

inline constexpr std::uint32_t labelHeight = 14;

/// Draws digits, signs and points in black; what does not fit on the photo is cut off.
void drawNumber(Photo& photo, std::string_view text, std::uint32_t left, std::uint32_t top);

}  // namespace keladjust::app

#endif
