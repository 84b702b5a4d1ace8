#ifndef KELADJUST_APP_SETTINGS_SETTINGS_H
#define KELADJUST_APP_SETTINGS_SETTINGS_H

#include <optional>
#include <vector>

#include "settings/Record.h"

namespace keladjust::app {

/// Values for some of the settings: what one preset, or one command line, asks for. Those that
/// nobody names stay open, which is what lets presets be stacked.
class Settings {
public:
    Settings();

    void set(const KeladjustSetting& setting, double value);
    std::optional<double> get(const KeladjustSetting& setting) const;

    /// Whether all are open.
    bool empty() const;

    /// Takes over every value that `later` holds.
    void apply(const Settings& later);

    /// The record for the library: what is open has its usual value.
    _AdjustParam record() const;

private:
    std::vector<std::optional<double>> values_;  // parallel to allSettings()
};

}  // namespace keladjust::app

#endif
