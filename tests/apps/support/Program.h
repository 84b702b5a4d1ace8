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

/// Where the program that is tested lies.
std::filesystem::path programPath();

/// Runs the program and waits for its end.
///
/// @param arguments in UTF-8, without letters that a shell treats specially between double quotes
Outcome runProgram(const std::vector<std::string>& arguments);

}  // namespace keladjust::test

#endif
