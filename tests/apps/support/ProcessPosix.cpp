#include <sys/wait.h>

#include <cstdlib>

#include "support/Process.h"

namespace keladjust::test {

namespace {

/// As the shell takes it for one word, letter by letter.
std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char letter : text) {
        word += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return word + "'";
}

}  // namespace

int runProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& output, const std::filesystem::path& errors) {
    std::string command = quoted(program);
    for (const std::string& argument : arguments) command += ' ' + quoted(argument);
    command += " > " + quoted(output) + " 2> " + quoted(errors);
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace keladjust::test
