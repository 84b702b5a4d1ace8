#ifndef KELADJUST_APP_COMMANDS_COMMANDLINE_H
#define KELADJUST_APP_COMMANDS_COMMANDLINE_H

#include <CLI/CLI.hpp>

#include <filesystem>
#include <string>
#include <vector>

#include "pictures/PixelBound.h"
#include "settings/Settings.h"

namespace keladjust::app {

/// What the commands have in common: --help, --version, --preset and one option per setting.
class CommandLine {
public:
    explicit CommandLine(const std::string& description);

    CLI::App& app() { return app_; }

    /// Adds the option that bounds the pictures to be read.
    CLI::Option* addPixelBound(PixelBound& bound);

    /// False if help or version was asked for, and has been printed.
    ///
    /// @throws UsageError
    bool parse(const std::vector<std::string>& arguments);

    /// Presets from first to last, then the options of settings, wherever they stood.
    ///
    /// @throws UsageError for a preset that cannot be read
    Settings settings() const;

    std::vector<std::filesystem::path> presets() const;

private:
    void refuseUnknown() const;

    CLI::App app_;
    std::vector<std::string> presets_;
    Settings explicit_;
};

}  // namespace keladjust::app

#endif
