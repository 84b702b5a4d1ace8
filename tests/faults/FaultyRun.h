#ifndef KELADJUST_TESTS_FAULTS_FAULTYRUN_H
#define KELADJUST_TESTS_FAULTS_FAULTYRUN_H

#include <array>
#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>

#include "Scenario.h"
#include "files/Bytes.h"
#include "injector/FaultPlan.h"
#include "support/TemporaryFolder.h"

namespace keladjust::faults {

struct Fault {
    Call call = Call::count;
    std::uint64_t number = 0;  ///< from 1
    Effect effect = Effect::none;
    int error = 0;
};

std::ostream& operator<<(std::ostream& out, const Fault& fault);

/// The files of a folder, by name, and what is in them.
using Contents = std::map<std::string, app::Bytes>;

Contents contentsOf(const test::TemporaryFolder& folder);

/// How a run ended, and what it left.
struct FaultyOutcome {
    int code = -1;   ///< its exit code; -1: killed by a signal
    int signal = 0;  ///< 0: none
    std::string output;
    std::string errors;
    Contents before;
    Contents after;
    std::array<std::uint64_t, static_cast<std::size_t>(Call::count)> calls{};

    std::uint64_t callsOf(Call call) const { return calls[static_cast<std::size_t>(call)]; }
};

/// Runs a program in a folder made by prepareFolder(), with one fault or none.
///
/// @param injector the library that makes it
FaultyOutcome runWithFault(const std::filesystem::path& program,
                           const std::filesystem::path& injector,
                           const std::vector<std::string>& arguments,
                           const std::optional<Fault>& fault);

/// Whether every output is that of an undisturbed run.
bool madeAll(const Scenario& scenario, const FaultyOutcome& undisturbed,
             const FaultyOutcome& outcome);

/// Fails unless every output is the old file or none, or the one of an undisturbed run, all others
/// are as they were, and there is nothing else but, after a kill, temporary files.
void expectWholeFiles(const Scenario& scenario, const FaultyOutcome& undisturbed,
                      const FaultyOutcome& outcome);

/// Fails unless all is as after an undisturbed run.
void expectUndisturbed(const FaultyOutcome& undisturbed, const FaultyOutcome& outcome);

}  // namespace keladjust::faults

#endif
