#include "support/Program.h"

#include "PathText.h"
#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace keladjust::test {
namespace {

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

int runShell(const std::string& command) {
#ifdef _WIN32
    // The shell takes off the outermost quotes.
    return _wsystem(app::pathFromText(quoted(command)).c_str());
#else
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

}  // namespace

std::filesystem::path programPath() {
    return std::filesystem::absolute(KELADJUST_PROGRAM).make_preferred();
}

Outcome runProgram(const std::vector<std::string>& arguments) {
    const TemporaryFolder folder;
    std::string command = quoted(programPath().string());
    for (const std::string& argument : arguments) command += ' ' + quoted(argument);
    command += " > " + quoted((folder / "output").string());
    command += " 2> " + quoted((folder / "errors").string());
    const int code = runShell(command);
    return {code, contents(folder / "output"), contents(folder / "errors")};
}

}  // namespace keladjust::test
