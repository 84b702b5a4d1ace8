#ifndef KELADJUST_GIMP_ADJUSTEDBUFFER_H
#define KELADJUST_GIMP_ADJUSTEDBUFFER_H

#include <gegl.h>

#include "settings/Settings.h"

namespace keladjust::gimp {

/// Runs the operation on the whole of `from`, into `to`. `progress` may be null.
///
/// @throws Failure if GEGL does not know the operation
void adjustBuffer(GeglBuffer* from, GeglBuffer* to, const app::Settings& settings,
                  void (*progress)(double share));

}  // namespace keladjust::gimp

#endif
