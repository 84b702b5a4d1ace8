#ifndef KELADJUST_APP_DIGITFONT_H
#define KELADJUST_APP_DIGITFONT_H

#include "Photo.h"

#include <string_view>

namespace keladjust::app {

inline constexpr std::uint32_t LABEL_HEIGHT = 14;

/// Draws digits, signs and points in black; what does not fit on the photo is cut off.
void drawNumber(Photo& photo, std::string_view text, std::uint32_t left, std::uint32_t top);

}  // namespace keladjust::app

#endif
