#ifndef KELADJUST_APP_SETTINGS_PRESETFILE_H
#define KELADJUST_APP_SETTINGS_PRESETFILE_H

#include <string>

#include "settings/Settings.h"

namespace keladjust::app {

/// The settings in the preset that `name` names, in UTF-8.
///
/// @throws UsageError that begins with the name, for a file that cannot be read or holds no preset
Settings settingsFromPresetFile(const std::string& name);

}  // namespace keladjust::app

#endif
