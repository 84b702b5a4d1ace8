#ifndef KELADJUST_APP_SETTINGS_FIELDS_H
#define KELADJUST_APP_SETTINGS_FIELDS_H

#include <keladjust/keladjust.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace keladjust::app {

/// One slot of the settings record. The table of these is the only place that knows the record:
/// options, presets, help and contact sheets are all made from it.
struct Field {
    std::string name;        ///< in kebab-case, as options and presets spell it
    std::string_view group;  ///< heading in the help
    std::string meaning;     ///< one line for the help, may be empty
    double minimum;          ///< of the useful range; any other value is accepted as well
    double maximum;
    double identity;     ///< leaves the picture alone; for a band's bounds, the usual band
    bool whole;          ///< holds a 32-bit integer, not a float
    std::size_t offset;  ///< of the slot, in bytes

    double read(const _AdjustParam& record) const;
    void write(_AdjustParam& record, double value) const;

    /// Stops with a Failure that begins with `what` unless the slot can hold `value`.
    void check(double value, const std::string& what) const;
};

/// All fields, in the order of the record.
std::span<const Field> fields();

/// The field of that name, or null.
const Field* findField(std::string_view name);

/// "-100..100, identity 0"
std::string rangeText(const Field& field);

/// The record in which every field has its identity value.
_AdjustParam identityRecord();

}  // namespace keladjust::app

#endif
