#ifndef KELADJUST_TESTS_FAULTS_SCENARIO_H
#define KELADJUST_TESTS_FAULTS_SCENARIO_H

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace keladjust::faults {

/// Something that the program is asked to do in a folder of its own, with names relative to that.
struct Scenario {
    std::string name;
    std::vector<std::string> arguments;
    std::vector<std::string> outputs;  ///< what it writes; some are there before
    int code = 0;                      ///< its exit code if all goes well
};

/// Reading and writing of each format with metadata, presets, tables, sheets, many pictures at
/// once, pictures that are replaced.
const std::vector<Scenario>& scenarios();

/// Makes what scenarios start from: pictures, a preset, and old files in the place of new ones.
void prepareFolder(const std::filesystem::path& folder);

/// For the names of tests.
std::ostream& operator<<(std::ostream& out, const Scenario& scenario);

}  // namespace keladjust::faults

#endif
