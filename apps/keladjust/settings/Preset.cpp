#include "settings/Preset.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <vector>

#include "text/Failure.h"
#include "text/NearestName.h"

namespace keladjust::app {

namespace {

nlohmann::json parse(const std::string& json, const std::string& name) {
    try {
        return nlohmann::json::parse(json);
    } catch (const nlohmann::json::exception& error) {
        // The library heads its texts with a code in brackets that helps nobody here.
        const std::string text = error.what();
        const std::size_t bracket = text.find("] ");
        throw UsageError(name + ": not valid JSON: " +
                         (bracket == std::string::npos ? text : text.substr(bracket + 2)));
    }
}

void take(const std::string& key, const nlohmann::json& value, const std::string& name,
          Settings& settings) {
    const KeladjustSetting* setting = findSetting(key);
    if (setting == nullptr) {
        throw UsageError(name + ": unknown setting \"" + key + '"' +
                         suggestion(key, settingNames()));
    }
    const std::string entry = name + ": \"" + key + '"';
    if (!value.is_number()) {
        throw UsageError(entry + " must be a number, not " + value.type_name());
    }
    const double number = value.get<double>();
    try {
        checkValue(*setting, number, entry);
    } catch (const Failure& failure) {
        throw UsageError(failure.what());
    }
    settings.set(*setting, number);
}

}  // namespace

Settings settingsFromPreset(const std::string& json, const std::string& name) {
    const nlohmann::json preset = parse(json, name);
    if (!preset.is_object()) {
        throw UsageError(name + ": a preset is one JSON object, such as {\"exposure\": 20}, not " +
                         preset.type_name());
    }
    Settings settings;
    for (const auto& [key, value] : preset.items()) take(key, value, name, settings);
    return settings;
}

std::string presetFromSettings(const Settings& settings) {
    nlohmann::ordered_json preset = nlohmann::ordered_json::object();
    for (const KeladjustSetting& setting : allSettings()) {
        const auto value = settings.get(setting);
        if (!value) continue;
        // Whole numbers without a decimal point, as people write them.
        constexpr double exact = 9007199254740992.0;
        if (*value == std::trunc(*value) && std::abs(*value) < exact) {
            preset[setting.name] = static_cast<std::int64_t>(*value);
        } else {
            preset[setting.name] = *value;
        }
    }
    return preset.dump(4) + '\n';
}

}  // namespace keladjust::app
