#ifndef KELADJUST_APP_COMMANDS_OPTIONS_H
#define KELADJUST_APP_COMMANDS_OPTIONS_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "codecs/Codec.h"
#include "commands/CommandDescription.h"
#include "pictures/Adjuster.h"
#include "settings/Settings.h"

namespace keladjust::app {

enum class Chatter { quiet, normal, verbose };

/// What a command line asks for.
struct Options {
    std::vector<std::filesystem::path> inputs;
    std::optional<std::filesystem::path> output;
    bool inPlace = false;
    const Codec* format = nullptr;  ///< null: from the output's name, or as the input
    EncodeOptions encoding;
    Settings settings;
    std::optional<std::filesystem::path> savePreset;
    bool compare = false;
    const KeladjustSetting* sheet = nullptr;
    int jobs = 1;
    int threads = 0;  ///< 0: the library's choice
    GpuUse gpu = GpuUse::never;
    PixelBound bound;
    Chatter chatter = Chatter::normal;
};

/// Nothing if help or version was asked for, and has been printed.
///
/// @param arguments without the program's name
/// @throws UsageError
std::optional<Options> parseOptions(const std::vector<std::string>& arguments);

/// The command line that parseOptions() reads.
CommandDescription describeOptions();

}  // namespace keladjust::app

#endif
