#include "manual/ManualPage.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

#include "commands/ExitCode.h"

namespace keladjust::app {

namespace {

/// Text as it is, whatever it begins with. Dashes are those that are typed.
std::string manualText(std::string_view text) {
    std::string result;
    if (text.starts_with('.') || text.starts_with('\'')) result = "\\&";
    for (const char character : text) {
        if (character == '-') {
            result += "\\-";
        } else if (character == '\\') {
            result += "\\e";
        } else {
            result += character;
        }
    }
    return result;
}

/// Words of one sentence, in lines of a decent length.
std::string manualLines(std::string_view sentence) {
    constexpr std::size_t longest = 70;  // with room for escapes
    std::string result;
    while (!sentence.empty()) {
        std::size_t end = sentence.size();
        if (end > longest) {
            end = sentence.rfind(' ', longest);
            if (end == std::string_view::npos) end = std::min(sentence.find(' '), sentence.size());
        }
        result += manualText(sentence.substr(0, end)) + "\n";
        sentence.remove_prefix(std::min(end + 1, sentence.size()));
    }
    return result;
}

/// A new sentence begins a new line, as mdoc(7) has it.
std::string manualSentences(const std::string& text) {
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        std::size_t begin = 0;
        for (std::size_t stop; (stop = line.find(". ", begin)) != std::string::npos;) {
            result += manualLines(std::string_view(line).substr(begin, stop + 1 - begin));
            begin = stop + 2;
        }
        result += manualLines(std::string_view(line).substr(begin));
    }
    return result;
}

std::string upperCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char letter) {
        return static_cast<char>(std::toupper(letter));
    });
    return text;
}

/// "Fl o Ar PATH", without the dash that Fl stands for
std::string flag(const OptionDescription& option, const std::string& name) {
    std::string macro = "Fl " + manualText(name.substr(1));
    if (!option.value.empty()) macro += " Ar " + option.value;
    return macro;
}

std::string synopsis(const CommandDescription& about) {
    std::string text = ".Sh SYNOPSIS\n.Nm " + about.name + "\n";
    for (const OptionDescription& option : about.options) {
        if (!option.names.empty() && option.required) {
            text += "." + flag(option, option.names.front()) + "\n";
        }
    }
    text += ".Op Ar OPTION ...\n";
    for (const OptionDescription& option : about.options) {
        if (!option.names.empty()) continue;
        const std::string place = "Ar " + option.value + (option.repeats ? " ..." : "");
        text += (option.required ? "." : ".Op ") + place + "\n";
    }
    return text;
}

std::string listed(const OptionDescription& option) {
    std::string item = ".It ";
    for (const std::string& name : option.names) {
        if (name != option.names.front()) item += " , ";
        item += flag(option, name);
    }
    if (option.names.empty()) item += "Ar " + option.value;
    return item + "\n" + manualSentences(option.help + ".");
}

/// Options under the headings of the program's help, in its order of first mention.
std::string optionList(const CommandDescription& about) {
    std::vector<std::string> groups;
    for (const OptionDescription& option : about.options) {
        if (std::ranges::find(groups, option.group) == groups.end()) groups.push_back(option.group);
    }
    std::string text;
    for (const std::string& group : groups) {
        const bool unnamed = group == "Options";
        text += unnamed ? std::string(".Sh OPTIONS\n") : ".Ss " + group + "\n";
        text += ".Bl -tag -width Ds\n";
        for (const OptionDescription& option : about.options) {
            if (option.group == group) text += listed(option);
        }
        text += ".El\n";
    }
    return text;
}

std::string exitStatus() {
    std::string text = ".Sh EXIT STATUS\n.Bl -tag -width Ds\n";
    for (const ExitMeaning& exit : exitMeanings) {
        text += ".It " + std::to_string(exit.code) + "\n" + manualSentences(exit.meaning);
    }
    return text + ".El\n";
}

std::string examples(const CommandDescription& about) {
    std::string text = ".Sh EXAMPLES\n";
    for (const std::string& example : about.examples) {
        text += ".Dl " + manualText(example) + "\n";
    }
    return text;
}

std::string seeAlso(const Command& command) {
    std::vector<std::string> others;
    for (const Command& other : commands()) {
        if (other.word != command.word) others.push_back(".Xr " + manualName(other) + " 1");
    }
    std::ranges::sort(others);
    return ".Sh SEE ALSO\n" + join(others, " ,\n") + "\n";
}

}  // namespace

std::string manualName(const Command& command) {
    return command.word.empty() ? "keladjust" : "keladjust-" + command.word;
}

std::string manualPage(const Command& command, const std::string& date) {
    const std::string name = manualName(command);
    return ".\\\" Made from the options of the program and the library's description of its\n"
           ".\\\" settings.\n.Dd " +
           date + "\n.Dt " + upperCase(name) + " 1\n.Os\n.Sh NAME\n.Nm " + name + "\n.Nd " +
           command.purpose + "\n" + synopsis(command.about) + ".Sh DESCRIPTION\n" +
           manualSentences(command.about.description) + optionList(command.about) + exitStatus() +
           examples(command.about) + seeAlso(command);
}

}  // namespace keladjust::app
