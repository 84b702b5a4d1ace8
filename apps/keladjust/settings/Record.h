#ifndef KELADJUST_APP_SETTINGS_RECORD_H
#define KELADJUST_APP_SETTINGS_RECORD_H

#include <keladjust/keladjust.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace keladjust::app {

/// Every setting of the library's record, in its order. Options, presets, help, contact sheets and
/// measurements are all made from the library's own description: nothing here knows the record.
std::span<const KeladjustSetting> allSettings();

/// The setting of that name, or null.
const KeladjustSetting* findSetting(std::string_view name);

std::vector<std::string> settingNames();

/// What a record holds for a setting.
double valueIn(const _AdjustParam& record, const KeladjustSetting& setting);
/// Whether that leaves pictures alone.
bool isAtIdentity(const _AdjustParam& record, const KeladjustSetting& setting);
void setValue(_AdjustParam& record, const KeladjustSetting& setting, double value);

/// Stops with a Failure that begins with `what` unless the record can hold `value`.
void checkValue(const KeladjustSetting& setting, double value, const std::string& what);

/// "-100..100, identity 0"
std::string rangeText(const KeladjustSetting& setting);

/// The record to start from: it leaves pictures alone.
_AdjustParam usualRecord();

}  // namespace keladjust::app

#endif
