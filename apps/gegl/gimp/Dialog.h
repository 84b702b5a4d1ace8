#ifndef KELADJUST_GIMP_DIALOG_H
#define KELADJUST_GIMP_DIALOG_H

#include <libgimp/gimp.h>

#include <optional>

#include "settings/Settings.h"

namespace keladjust::gimp {

/// Asks for settings with a slider each, beside a preview of the layer.
///
/// @return nothing if the user turns away
std::optional<app::Settings> askForSettings(gint32 drawable, const app::Settings& start);

}  // namespace keladjust::gimp

#endif
