#ifndef KELADJUST_APP_PICTURES_ORIENTATION_H
#define KELADJUST_APP_PICTURES_ORIENTATION_H

#include "pictures/Photo.h"

namespace keladjust::app {

/// The picture as it is meant to be looked at.
///
/// @param orientation the EXIF value, 1..8, of how `stored` lies in its file; any other counts as 1
Photo upright(Photo stored, int orientation);

}  // namespace keladjust::app

#endif
