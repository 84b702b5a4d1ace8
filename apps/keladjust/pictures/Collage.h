#ifndef KELADJUST_APP_PICTURES_COLLAGE_H
#define KELADJUST_APP_PICTURES_COLLAGE_H

#include "pictures/Photo.h"

namespace keladjust::app {

/// An opaque white picture to paste others on.
Photo whiteSheet(std::uint64_t width, std::uint64_t height, ChannelLayout layout);

/// Copies `part`, which has the sheet's layout, to where it fits entirely.
void paste(const Photo& part, Photo& sheet, std::uint32_t left, std::uint32_t top);

}  // namespace keladjust::app

#endif
