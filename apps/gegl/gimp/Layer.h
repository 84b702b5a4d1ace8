#ifndef KELADJUST_GIMP_LAYER_H
#define KELADJUST_GIMP_LAYER_H

#include <libgimp/gimp.h>

#include "settings/Settings.h"

namespace keladjust::gimp {

/// Adjusts a layer, of which the selected part takes the result, as one step to undo. The layer is
/// adjusted as a whole whatever is selected: its haze and its vignette are those of the picture.
///
/// Until all is done the layer is as it was. Whoever cancels ends the plug-in before that.
void adjustLayer(gint32 drawable, const app::Settings& settings);

}  // namespace keladjust::gimp

#endif
