// The program short of memory: each allocation in turn is refused, alone or with all that follow.
// Most are left out to save time; KELADJUST_EVERY_ALLOCATION in the environment takes them all.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "FaultyRun.h"

namespace {

using namespace keladjust::faults;

/// How many allocations of a run are refused in turn, unless all are: of those that make the
/// options, which are the same for all runs, and of those that do what they ask for.
constexpr std::uint64_t usualTriesOfOptions = 8;
constexpr std::uint64_t usualTries = 50;

/// libtiff 4.5 goes on with tables that it had no memory for: those of a file's fields, when it
/// opens one, and of the directory that it writes. That is a dozen allocations of a run.
bool diesInLibtiff(const Scenario& scenario, const FaultyOutcome& outcome) {
    return scenario.name == "Tiff" && outcome.signal == SIGSEGV;
}

class Allocations : public testing::TestWithParam<Scenario> {
protected:
    static FaultyOutcome run(const std::vector<std::string>& arguments,
                             const std::optional<Fault>& fault) {
        return runWithFault(KELADJUST_PROGRAM, KELADJUST_FAILING_ALLOCATIONS, arguments, fault);
    }

    void expectRight(const Fault& fault) {
        const FaultyOutcome outcome = run(GetParam().arguments, fault);
        const testing::Message message = testing::Message() << fault << '\n' << outcome.errors;
        SCOPED_TRACE(message);
        expectWholeFiles(GetParam(), undisturbed, outcome);
        if (diesInLibtiff(GetParam(), outcome)) return;
        EXPECT_EQ(outcome.signal, 0);
        if (outcome.code == GetParam().code && madeAll(GetParam(), undisturbed, outcome)) return;
        ++failures;
        EXPECT_EQ(outcome.code, 1);
        EXPECT_NE(outcome.errors.find("not enough memory"), std::string::npos);
    }

    /// Of those from `first` to `last` as many as there is time for.
    void expectRightOf(std::uint64_t first, std::uint64_t last, std::uint64_t tries) {
        const bool every = std::getenv("KELADJUST_EVERY_ALLOCATION") != nullptr;
        const std::uint64_t step = every ? 1 : std::max<std::uint64_t>(1, (last - first) / tries);
        for (std::uint64_t number = first; number <= last; number += step) {
            expectRight({Call::allocate, number, Effect::error, ENOMEM});
            expectRight({Call::allocate, number, Effect::errorsOn, ENOMEM});
        }
    }

    const FaultyOutcome undisturbed = run(GetParam().arguments, std::nullopt);
    int failures = 0;
};

TEST_P(Allocations, ThatFailAreToldOrSurvivedAndLeaveWholeFiles) {
    ASSERT_EQ(undisturbed.code, GetParam().code) << undisturbed.errors;
    std::vector<std::string> optionsOnly = GetParam().arguments;
    optionsOnly.emplace_back("--version");
    const std::uint64_t options = run(optionsOnly, std::nullopt).callsOf(Call::allocate);
    const std::uint64_t all = undisturbed.callsOf(Call::allocate);
    ASSERT_GT(all, options);
    expectRightOf(1, options, usualTriesOfOptions);
    expectRightOf(options + 1, all, usualTries);
    EXPECT_GT(failures, 0);
}

INSTANTIATE_TEST_SUITE_P(Faults, Allocations, testing::ValuesIn(scenarios()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
