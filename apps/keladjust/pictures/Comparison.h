#ifndef KELADJUST_APP_PICTURES_COMPARISON_H
#define KELADJUST_APP_PICTURES_COMPARISON_H

#include "pictures/Photo.h"

namespace keladjust::app {

inline constexpr std::uint32_t comparisonGap = 8;

/// Before on the left, after on the right, a white gap between. Both have one size and layout.
Photo sideBySide(const Photo& before, const Photo& after);

}  // namespace keladjust::app

#endif
