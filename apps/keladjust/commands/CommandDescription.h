#ifndef KELADJUST_APP_COMMANDS_COMMANDDESCRIPTION_H
#define KELADJUST_APP_COMMANDS_COMMANDDESCRIPTION_H

#include <string>
#include <vector>

namespace keladjust::app {

/// What a shell offers in the place of a value.
struct Offer {
    enum class Kind {
        nothing,  ///< any number or text
        words,    ///< one of some words
        files,    ///< any file or folder
        presets,
        pictures,
    };
    Kind kind = Kind::nothing;
    std::vector<std::string> words = {};
};

struct OptionDescription {
    std::vector<std::string> names;  ///< "-o", "--output"; none if it is told by its place
    std::string value;               ///< what stands for its value, such as "FILE"; empty for none
    std::string help;                ///< one line
    std::string group;
    bool repeats = false;
    bool required = false;
    Offer offer;
};

/// A command as manual pages and shells' completions show it.
struct CommandDescription {
    std::string name;  ///< "keladjust", "keladjust lut"
    std::string description;
    std::vector<std::string> examples;
    std::vector<OptionDescription> options;  ///< in the order of the program's own help
};

}  // namespace keladjust::app

#endif
