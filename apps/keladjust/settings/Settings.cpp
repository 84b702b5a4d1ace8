#include "settings/Settings.h"

#include <algorithm>

namespace keladjust::app {

namespace {

std::size_t indexOf(const Field& field) {
    return static_cast<std::size_t>(&field - fields().data());
}

}  // namespace

Settings::Settings() : values_(fields().size()) {}

void Settings::set(const Field& field, double value) {
    values_[indexOf(field)] = value;
}

std::optional<double> Settings::get(const Field& field) const {
    return values_[indexOf(field)];
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
    _AdjustParam record = identityRecord();
    for (const Field& field : fields()) {
        if (const auto value = get(field)) field.write(record, *value);
    }
    return record;
}

}  // namespace keladjust::app
