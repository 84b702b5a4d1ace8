#include "manual/Commands.h"
#include "manual/Completions.h"

namespace keladjust::app {

namespace {

/// The line that offers what `offer` says; `_filedir` is bash-completion's.
std::string bashOffer(const Offer& offer) {
    switch (offer.kind) {
        case Offer::Kind::words:
            return "COMPREPLY=($(compgen -W '" + join(offer.words, " ") + "' -- \"$cur\"))";
        case Offer::Kind::files:
            return "_filedir";
        case Offer::Kind::presets:
            return std::string("_filedir ") + presetExtension;
        case Offer::Kind::pictures:
            return "_filedir '@(" + join(pictureExtensions(), "|") + ")'";
        case Offer::Kind::nothing:
            break;
    }
    return ":";
}

std::string bashFunction(const Command& command) {
    std::string cases;
    std::string names;
    std::string places = ":";
    for (const OptionDescription& option : command.about.options) {
        if (option.names.empty()) {
            places = bashOffer(option.offer);
            continue;
        }
        names += "        " + join(option.names, " ") + "\n";
        if (option.value.empty()) continue;
        cases += "    " + join(option.names, "|") + ")\n        " + bashOffer(option.offer) +
                 "\n        return ;;\n";
    }
    const std::string function = "_keladjust_" + (command.word.empty() ? "adjust" : command.word);
    return function + "()\n{\n    case $prev in\n" + cases +
           "    esac\n    $split && return\n"
           "    if [[ $cur == -* ]]; then\n        COMPREPLY=($(compgen -W '\n" +
           names + "        ' -- \"$cur\"))\n    else\n        " + places + "\n    fi\n}\n\n";
}

}  // namespace

std::string bashCompletion() {
    std::string functions;
    std::vector<std::string> words;
    for (const Command& command : commands()) {
        functions += bashFunction(command);
        if (!command.word.empty()) words.push_back(command.word);
    }
    return "# Completes keladjust in bash, by bash-completion.\n\n" + functions +
           "_keladjust()\n{\n    local cur prev words cword split\n"
           "    _init_completion -s || return\n"
           "    if ((cword > 1)); then\n        case ${words[1]} in\n        " +
           join(words, "|") +
           ")\n            _keladjust_${words[1]}\n            return ;;\n        esac\n    fi\n"
           "    _keladjust_adjust\n"
           "    ((cword > 1)) || COMPREPLY+=($(compgen -W '" +
           join(words, " ") + "' -- \"$cur\"))\n}\n\ncomplete -F _keladjust keladjust\n";
}

}  // namespace keladjust::app
