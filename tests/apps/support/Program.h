#ifndef KELADJUST_TESTS_PROGRAM_H
#define KELADJUST_TESTS_PROGRAM_H

#include <filesystem>
#include <string>
#include <vector>

namespace keladjust::test {

/// How a run of the program ended and what it printed.
struct Outcome {
    int code = -1;
    std::string output;
    std::string errors;
};

/// Runs any program, by its path or as the shell would find it, and waits for its end.
Outcome runProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments);

/// Where the program that is tested lies.
std::filesystem::path programPath();

/// Runs the program and waits for its end.
///
/// @param arguments in UTF-8
Outcome runProgram(const std::vector<std::string>& arguments);

}  // namespace keladjust::test

#endif
