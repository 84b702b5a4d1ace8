#include "settings/Record.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "text/Failure.h"
#include "text/NumberText.h"

namespace keladjust::app {

namespace {

std::size_t offsetOf(const KeladjustSetting& setting) {
    return sizeof(float) * static_cast<std::size_t>(setting.slot);
}

template <class Slot>
double slotValue(const _AdjustParam& record, const KeladjustSetting& setting) {
    Slot value{};
    std::memcpy(&value, reinterpret_cast<const char*>(&record) + offsetOf(setting), sizeof value);
    return static_cast<double>(value);
}

template <class Slot>
void setSlot(_AdjustParam& record, const KeladjustSetting& setting, double value) {
    const auto stored = static_cast<Slot>(value);
    std::memcpy(reinterpret_cast<char*>(&record) + offsetOf(setting), &stored, sizeof stored);
}

std::string text(float value) {
    return numberText(static_cast<double>(value));
}

}  // namespace

std::span<const KeladjustSetting> allSettings() {
    int count = 0;
    const KeladjustSetting* first = keladjustSettings(&count);
    return {first, static_cast<std::size_t>(count)};
}

const KeladjustSetting* findSetting(std::string_view name) {
    const auto all = allSettings();
    const auto found = std::ranges::find(all, name, &KeladjustSetting::name);
    return found == all.end() ? nullptr : &*found;
}

std::vector<std::string> settingNames() {
    std::vector<std::string> names;
    for (const KeladjustSetting& setting : allSettings()) names.emplace_back(setting.name);
    return names;
}

double valueIn(const _AdjustParam& record, const KeladjustSetting& setting) {
    return setting.isInteger != 0 ? slotValue<std::int32_t>(record, setting)
                                  : slotValue<float>(record, setting);
}

bool isAtIdentity(const _AdjustParam& record, const KeladjustSetting& setting) {
    return valueIn(record, setting) == static_cast<double>(setting.identity);
}

void setValue(_AdjustParam& record, const KeladjustSetting& setting, double value) {
    if (setting.isInteger != 0) {
        setSlot<std::int32_t>(record, setting, value);
    } else {
        setSlot<float>(record, setting, value);
    }
}

void checkValue(const KeladjustSetting& setting, double value, const std::string& what) {
    const std::string useful = "; useful values are " + rangeText(setting);
    if (!std::isfinite(value)) throw Failure(what + " needs a finite number" + useful);
    const bool whole = setting.isInteger != 0;
    if (whole && value != std::trunc(value)) throw Failure(what + " needs a whole number" + useful);
    const double limit = whole ? static_cast<double>(std::numeric_limits<std::int32_t>::max())
                               : static_cast<double>(std::numeric_limits<float>::max());
    if (std::abs(value) > limit) throw Failure(what + " is out of all bounds" + useful);
}

std::string rangeText(const KeladjustSetting& setting) {
    return text(setting.lowest) + ".." + text(setting.highest) + ", identity " +
           text(setting.identity);
}

_AdjustParam usualRecord() {
    _AdjustParam record{};
    for (const KeladjustSetting& setting : allSettings()) {
        setValue(record, setting, static_cast<double>(setting.usual));
    }
    return record;
}

}  // namespace keladjust::app
