#include "manual/Commands.h"
#include "manual/Completions.h"

namespace keladjust::app {

namespace {

std::string fishQuoted(const std::string& text) {
    return quoted(escaped(text, "\\"), "\\'");
}

/// Options of `complete` that offer what `offer` says and no other files.
std::string fishOffer(const Offer& offer) {
    switch (offer.kind) {
        case Offer::Kind::words:
            return " -x -a " + fishQuoted(join(offer.words, " "));
        case Offer::Kind::files:
            return " -r -F";
        case Offer::Kind::presets:
            return std::string(" -x -k -a '(__keladjust_files ") + presetExtension + ")'";
        case Offer::Kind::pictures:
            return " -k -a '(__keladjust_files " + join(pictureExtensions(), " ") + ")'";
        case Offer::Kind::nothing:
            break;
    }
    return " -x";
}

std::string fishOption(const std::string& command, const OptionDescription& option) {
    std::string line = "complete -c keladjust -n '__keladjust_command_is " + command + "'";
    for (const std::string& name : option.names) {
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (!option.value.empty()) line += fishOffer(option.offer);
    return line + " -d " + fishQuoted(option.help) + "\n";
}

}  // namespace

std::string fishCompletion() {
    std::string words;
    std::string lines;
    for (const Command& command : commands()) {
        if (!command.word.empty()) {
            words += ' ' + command.word;
            lines += "complete -c keladjust -n __fish_is_first_token -a " + command.word + " -d " +
                     fishQuoted(command.purpose) + "\n";
        }
        for (const OptionDescription& option : command.about.options) {
            lines += fishOption(command.word.empty() ? "adjust" : command.word, option);
        }
    }
    return "# Completes keladjust in fish.\n\n"
           "# Whether the line is one of that command's; without a word it is that of \"adjust\".\n"
           "function __keladjust_command_is\n"
           "    set -l tokens (commandline -opc)\n"
           "    set -l command adjust\n"
           "    if set -q tokens[2]; and contains -- $tokens[2]" +
           words +
           "\n        set command $tokens[2]\n    end\n"
           "    test $command = $argv[1]\nend\n\n"
           "# Folders, and files of these extensions.\n"
           "function __keladjust_files\n"
           "    set -l extensions (string join '|' $argv)\n"
           "    for name in (__fish_complete_path (commandline -ct) | string replace -r '\\t.*' "
           "'')\n"
           "        if string match -q '*/' -- $name\n"
           "            or string match -qir \"\\.($extensions)\\$\" -- $name\n"
           "            echo $name\n"
           "        end\n    end\nend\n\n"
           "complete -c keladjust -f\n" +
           lines;
}

}  // namespace keladjust::app
