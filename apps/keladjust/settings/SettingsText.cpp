#include "settings/SettingsText.h"

#include <filesystem>
#include <sstream>
#include <system_error>

#include "settings/PresetFile.h"
#include "text/Failure.h"
#include "text/NearestName.h"
#include "text/NumberText.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

Settings settingsFromWords(const std::string& text) {
    Settings settings;
    std::istringstream words(text);
    std::string name;
    while (words >> name) {
        const KeladjustSetting* setting = findSetting(name);
        std::string value;
        const bool isPair = static_cast<bool>(words >> value);
        if (setting == nullptr && !isPair) {
            throw UsageError('"' + name + "\" is neither a preset file nor a setting" +
                             suggestion(name, settingNames()));
        }
        if (setting == nullptr) {
            throw UsageError("unknown setting \"" + name + '"' + suggestion(name, settingNames()));
        }
        settings.set(*setting, settingValueFromText(*setting, value, name));
    }
    return settings;
}

}  // namespace

double settingValueFromText(const KeladjustSetting& setting, const std::string& text,
                            const std::string& what) {
    const auto value = numberFromText(text);
    if (!value) {
        throw UsageError(what + " needs a number, not \"" + text + "\"; useful values are " +
                         rangeText(setting));
    }
    try {
        checkValue(setting, *value, what);
    } catch (const Failure& failure) {
        throw UsageError(failure.what());
    }
    return *value;
}

Settings settingsFromText(const std::string& text) {
    std::error_code none;
    if (!text.empty() && std::filesystem::exists(pathFromText(text), none)) {
        return settingsFromPresetFile(text);
    }
    return settingsFromWords(text);
}

}  // namespace keladjust::app
