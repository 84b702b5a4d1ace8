#include "support/Program.h"

#include <fstream>
#include <iterator>

#include "support/Process.h"
#include "support/TemporaryFolder.h"

namespace keladjust::test {

namespace {

/// As text: with the line ends of C++, whatever the system's are.
std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::filesystem::path programPath() {
    return std::filesystem::absolute(KELADJUST_PROGRAM).make_preferred();
}

Outcome runProgram(const std::filesystem::path& program,
                   const std::vector<std::string>& arguments) {
    const TemporaryFolder folder;
    const auto output = folder / "output";
    const auto errors = folder / "errors";
    const int code = runProcess(program, arguments, output, errors);
    return {code, contents(output), contents(errors)};
}

Outcome runProgram(const std::vector<std::string>& arguments) {
    return runProgram(programPath(), arguments);
}

}  // namespace keladjust::test
