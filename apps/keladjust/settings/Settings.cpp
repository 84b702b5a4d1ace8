#include "settings/Settings.h"

#include <algorithm>

namespace keladjust::app {

namespace {

std::size_t indexOf(const KeladjustSetting& setting) {
    return static_cast<std::size_t>(&setting - allSettings().data());
}

}  // namespace

Settings::Settings() : values_(allSettings().size()) {}

void Settings::set(const KeladjustSetting& setting, double value) {
    values_[indexOf(setting)] = value;
}

std::optional<double> Settings::get(const KeladjustSetting& setting) const {
    return values_[indexOf(setting)];
}

bool Settings::empty() const {
    return std::ranges::none_of(values_, [](const auto& value) { return value.has_value(); });
}

void Settings::apply(const Settings& later) {
    for (std::size_t index = 0; index < values_.size(); ++index) {
        if (later.values_[index]) values_[index] = later.values_[index];
    }
}

_AdjustParam Settings::record() const {
    _AdjustParam record = usualRecord();
    for (const KeladjustSetting& setting : allSettings()) {
        if (const auto value = get(setting)) setValue(record, setting, *value);
    }
    return record;
}

}  // namespace keladjust::app
