#ifndef KELADJUST_APP_COMMANDS_COMMANDLINE_H
#define KELADJUST_APP_COMMANDS_COMMANDLINE_H

#include <CLI/CLI.hpp>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "commands/CommandDescription.h"
#include "pictures/PixelBound.h"
#include "settings/Settings.h"

namespace keladjust::app {

/// What the commands have in common: --help, --version, --preset and one option per setting.
class CommandLine {
public:
    /// @param name     "keladjust", "keladjust lut"
    /// @param examples whole command lines
    /// @param footer   what else the help ends with; may be empty
    CommandLine(const std::string& name, const std::string& description,
                const std::vector<std::string>& examples, const std::string& footer = "");
    CommandLine(const CommandLine&) = delete;  // its options point to it
    CommandLine& operator=(const CommandLine&) = delete;

    CLI::App& app() { return app_; }

    /// Says what shells offer for an option's value; nothing unless said.
    void offer(const CLI::Option* option, Offer offer) { offers_[option] = std::move(offer); }

    /// All that was added so far.
    CommandDescription describe() const;

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
    std::vector<std::string> examples_;
    std::map<const CLI::Option*, Offer> offers_;
    std::vector<std::string> presets_;
    Settings explicit_;
};

}  // namespace keladjust::app

#endif
