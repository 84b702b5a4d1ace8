#ifndef KELADJUST_APP_SETTINGS_SETTINGSTEXT_H
#define KELADJUST_APP_SETTINGS_SETTINGSTEXT_H

#include <string>

#include "settings/Settings.h"

namespace keladjust::app {

/// The value that `text` spells for a setting.
///
/// @param what stands at the head of messages
/// @throws UsageError for what is no number, or none that the record can hold
double settingValueFromText(const KeladjustSetting& setting, const std::string& text,
                            const std::string& what);

/// What a host with a single field for text asks for: the name of a preset file, or names and
/// numbers in turn, such as "exposure 20 red-hue 5", of which the last counts where a name comes
/// twice. Where a file has that name it is the file; an empty text sets nothing.
///
/// @throws UsageError for anything else
Settings settingsFromText(const std::string& text);

}  // namespace keladjust::app

#endif
