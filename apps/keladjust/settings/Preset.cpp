#include "settings/Preset.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <utility>

#include "text/Failure.h"
#include "text/NearestName.h"

namespace keladjust::app {

namespace {

using Json = nlohmann::json;

/// Takes a preset's entries as they come. There is no tree of them, which the library could not
/// even take down where memory is short.
class PresetReader {
public:
    explicit PresetReader(const std::string& name) : name_(name) {}

    Settings takeSettings() { return std::move(settings_); }

    // What the library calls, by its names.
    // NOLINTBEGIN(readability-identifier-naming)
    bool key(const std::string& key) {
        setting_ = findSetting(key);
        if (setting_ == nullptr) {
            throw UsageError(name_ + ": unknown setting \"" + key + '"' +
                             suggestion(key, settingNames()));
        }
        return true;
    }

    bool number_float(double number, const std::string&) {
        if (setting_ == nullptr) refuse("number");
        try {
            checkValue(*setting_, number, entry());
        } catch (const Failure& failure) {
            throw UsageError(failure.what());
        }
        settings_.set(*setting_, number);
        return true;
    }
    bool number_integer(std::int64_t number) {
        return number_float(static_cast<double>(number), {});
    }
    bool number_unsigned(std::uint64_t number) {
        return number_float(static_cast<double>(number), {});
    }

    bool start_object(std::size_t) {
        if (begun_) refuse("object");
        return begun_ = true;
    }
    bool end_object() { return true; }

    bool start_array(std::size_t) { refuse("array"); }
    bool end_array() { return true; }
    bool null() { refuse("null"); }
    bool boolean(bool) { refuse("boolean"); }
    bool string(const std::string&) { refuse("string"); }
    bool binary(const Json::binary_t&) { refuse("binary"); }

    bool parse_error(std::size_t, const std::string&, const Json::exception& error) {
        // The library heads its texts with a code in brackets that helps nobody here.
        const std::string text = error.what();
        const std::size_t bracket = text.find("] ");
        throw UsageError(name_ + ": not valid JSON: " +
                         (bracket == std::string::npos ? text : text.substr(bracket + 2)));
    }

    // NOLINTEND(readability-identifier-naming)

private:
    std::string entry() const { return name_ + ": \"" + setting_->name + '"'; }

    [[noreturn]] void refuse(const std::string& kind) const {
        if (setting_ != nullptr) throw UsageError(entry() + " must be a number, not " + kind);
        throw UsageError(name_ + ": a preset is one JSON object, such as {\"exposure\": 20}, not " +
                         kind);
    }

    const std::string& name_;
    Settings settings_;
    const KeladjustSetting* setting_ = nullptr;  // of the last key
    bool begun_ = false;
};

/// Whole numbers without a decimal point, as people write them.
std::string numberIn(double value) {
    constexpr double exact = 9007199254740992.0;
    if (value == std::trunc(value) && std::abs(value) < exact) {
        return std::to_string(static_cast<std::int64_t>(value));
    }
    return Json(value).dump();
}

}  // namespace

Settings settingsFromPreset(const std::string& json, const std::string& name) {
    PresetReader reader(name);
    Json::sax_parse(json, &reader);
    return reader.takeSettings();
}

std::string presetFromSettings(const Settings& settings) {
    std::string entries;
    for (const KeladjustSetting& setting : allSettings()) {
        const auto value = settings.get(setting);
        if (!value) continue;
        if (!entries.empty()) entries += ',';
        entries += "\n    \"" + std::string(setting.name) + "\": " + numberIn(*value);
    }
    if (entries.empty()) return "{}\n";
    return '{' + entries + "\n}\n";
}

}  // namespace keladjust::app
