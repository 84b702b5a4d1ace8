#ifndef KELADJUST_APP_PICTURES_DOWNSCALE_H
#define KELADJUST_APP_PICTURES_DOWNSCALE_H

#include "pictures/Photo.h"

namespace keladjust::app {

/// A copy whose longer side has at most `longest` pixels: each is the mean of a square block of the
/// original, cropped at the right and lower borders. Small pictures are copied as they are.
Photo downscaled(const Photo& photo, std::uint32_t longest);

}  // namespace keladjust::app

#endif
