#ifndef KELADJUST_APP_SETTINGS_PRESET_H
#define KELADJUST_APP_SETTINGS_PRESET_H

#include <string>

#include "settings/Settings.h"

namespace keladjust::app {

/// The settings in a preset's JSON text: one object, names of settings as keys, numbers as values.
///
/// @param name stands at the head of messages
/// @throws UsageError for text that is no such object, unknown keys and values of another kind
Settings settingsFromPreset(const std::string& json, const std::string& name);

/// The JSON text of a preset that holds exactly the values that are set, in the record's order.
std::string presetFromSettings(const Settings& settings);

}  // namespace keladjust::app

#endif
