#ifndef KELADJUST_TESTS_PROCESS_H
#define KELADJUST_TESTS_PROCESS_H

#include <filesystem>
#include <string>
#include <vector>

namespace keladjust::test {

/// Runs a program, waits for its end, and lets it print into two files.
///
/// @param arguments in UTF-8
/// @return its exit code; -1 if it did not come to one
int runProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& output, const std::filesystem::path& errors);

}  // namespace keladjust::test

#endif
