#ifndef KELADJUST_APP_MANUAL_COMMANDS_H
#define KELADJUST_APP_MANUAL_COMMANDS_H

#include <string>
#include <string_view>
#include <vector>

#include "commands/CommandDescription.h"

namespace keladjust::app {

/// What the program can be asked for, the main command first.
struct Command {
    std::string word;     ///< "lut"; empty for the main command
    std::string purpose;  ///< in a few words, in lower case
    CommandDescription about;
};

const std::vector<Command>& commands();

/// The extensions of all picture files that can be read, without dots.
std::vector<std::string> pictureExtensions();

/// That of presets.
inline constexpr const char* presetExtension = "json";

std::string join(const std::vector<std::string>& texts, std::string_view between);

/// `text` with every one of `characters` behind `escape`.
std::string escaped(std::string_view text, std::string_view characters,
                    std::string_view escape = "\\");

/// `text` between single quotes, for a shell that ends and begins them with `quote`.
std::string quoted(std::string_view text, std::string_view quote);

}  // namespace keladjust::app

#endif
