#ifndef KELADJUST_APP_SETTINGS_SETTINGS_H
#define KELADJUST_APP_SETTINGS_SETTINGS_H

#include <optional>
#include <vector>

#include "settings/Fields.h"

namespace keladjust::app {

/// Values for some of the fields: what one preset, or one command line, asks for. Fields that
/// nobody names stay open, which is what lets presets be stacked.
class Settings {
public:
    Settings();

    void set(const Field& field, double value);
    std::optional<double> get(const Field& field) const;

    /// Whether all fields are open.
    bool empty() const;

    /// Takes over every value that `later` holds.
    void apply(const Settings& later);

    /// The record for the library: open fields get their identity.
    _AdjustParam record() const;

private:
    std::vector<std::optional<double>> values_;  // parallel to fields()
};

}  // namespace keladjust::app

#endif
