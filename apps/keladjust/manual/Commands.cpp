#include "manual/Commands.h"

#include "codecs/Codec.h"
#include "commands/BenchCommand.h"
#include "commands/LutCommand.h"
#include "commands/Options.h"

namespace keladjust::app {

const std::vector<Command>& commands() {
    static const std::vector<Command> all = {
        {"", "adjust photographs", describeOptions()},
        {"lut", "write settings as a colour table", describeLutCommand()},
        {"bench", "measure every stage on a picture", describeBenchCommand()},
    };
    return all;
}

std::vector<std::string> pictureExtensions() {
    std::vector<std::string> all;
    for (const Codec* codec : codecs()) {
        for (const std::string_view extension : codec->extensions()) all.emplace_back(extension);
    }
    return all;
}

std::string join(const std::vector<std::string>& texts, std::string_view between) {
    std::string all;
    for (const std::string& text : texts) {
        if (!all.empty()) all += between;
        all += text;
    }
    return all;
}

std::string escaped(std::string_view text, std::string_view characters, std::string_view escape) {
    std::string result;
    for (const char character : text) {
        if (characters.find(character) != std::string_view::npos) result += escape;
        result += character;
    }
    return result;
}

std::string quoted(std::string_view text, std::string_view quote) {
    std::string result = "'";
    for (const char character : text) {
        if (character == '\'') {
            result += quote;
        } else {
            result += character;
        }
    }
    return result + '\'';
}

}  // namespace keladjust::app
