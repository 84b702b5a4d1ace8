#include "manual/Commands.h"
#include "manual/Completions.h"

namespace keladjust::app {

namespace {

std::string zshQuoted(const std::string& text) {
    return quoted(text, "'\\''");
}

/// What `_arguments` does for a value, after its message.
std::string zshOffer(const Offer& offer) {
    switch (offer.kind) {
        case Offer::Kind::words:
            return "(" + join(offer.words, " ") + ")";
        case Offer::Kind::files:
            return "_files";
        case Offer::Kind::presets:
            return std::string("_files -g \"*.") + presetExtension + "(-.)\"";
        case Offer::Kind::pictures:
            return "_keladjust_pictures";
        case Offer::Kind::nothing:
            break;
    }
    return " ";  // the message alone
}

std::string zshArgument(const OptionDescription& option) {
    if (option.names.empty()) {
        return zshQuoted((option.repeats ? "*:" : ":") + escaped(option.value, ":") + ":" +
                         zshOffer(option.offer));
    }
    const std::string help = "[" + escaped(option.help, "[]:\\") + "]";
    const std::string value =
        option.value.empty() ? "" : ":" + option.value + ":" + zshOffer(option.offer);
    if (option.names.size() == 1) {
        return (option.repeats ? "'*'" : "") + option.names.front() + zshQuoted(help + value);
    }
    // Names of one option exclude each other.
    return zshQuoted("(" + join(option.names, " ") + ")") + "{" + join(option.names, ",") + "}" +
           zshQuoted(help + value);
}

std::string zshFunction(const Command& command) {
    std::string arguments;
    for (const OptionDescription& option : command.about.options) {
        arguments += " \\\n    " + zshArgument(option);
    }
    return "_keladjust_" + (command.word.empty() ? "adjust" : command.word) +
           "() {\n  _arguments -s -S" + arguments + "\n}\n\n";
}

}  // namespace

std::string zshCompletion() {
    std::string functions;
    std::string described;
    std::vector<std::string> words;
    for (const Command& command : commands()) {
        functions += zshFunction(command);
        if (command.word.empty()) continue;
        words.push_back(command.word);
        described += "\n      " + zshQuoted(command.word + ":" + command.purpose);
    }
    return "#compdef keladjust\n# Completes keladjust in zsh.\n\n"
           "_keladjust_pictures() {\n"
           "  local -a words_of_commands\n"
           "  if (( CURRENT == 2 )) && (( ! $+keladjust_command )); then\n"
           "    words_of_commands=(" +
           described +
           ")\n    _describe command words_of_commands\n  fi\n"
           "  _files -g \"*.(#i)(" +
           join(pictureExtensions(), "|") + ")(-.)\"\n}\n\n" + functions +
           "_keladjust() {\n"
           "  if (( CURRENT > 2 )) && [[ $words[2] == (" +
           join(words, "|") +
           ") ]]; then\n"
           "    local keladjust_command=$words[2]\n"
           "    shift words\n    (( CURRENT-- ))\n"
           "    _keladjust_$keladjust_command\n"
           "  else\n    _keladjust_adjust\n  fi\n}\n\n_keladjust \"$@\"\n";
}

}  // namespace keladjust::app
