// The library's cube writer under faults. It writes to the file itself, and what fails after that
// was opened goes unnoticed, as its interface says: no file is promised to be whole, only that the
// host lives on.

#include <gtest/gtest.h>

#include <cerrno>

#include "FaultyRun.h"

namespace {

using namespace keladjust::faults;

FaultyOutcome write(const char* injector, const std::optional<Fault>& fault) {
    return runWithFault(KELADJUST_CUBE_WRITER, injector, {"old.cube"}, fault);
}

TEST(CubeWriter, LeavesAFileThatCannotBeOpened) {
    for (const int error : {EACCES, EMFILE, ENOSPC}) {
        const FaultyOutcome outcome =
            write(KELADJUST_FAILING_CALLS, Fault{Call::open, 1, Effect::error, error});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.output, "Cannot open the path file!\n");
        EXPECT_EQ(outcome.after, outcome.before);
    }
}

TEST(CubeWriter, SurvivesWritesThatFail) {
    const FaultyOutcome undisturbed = write(KELADJUST_FAILING_CALLS, std::nullopt);
    ASSERT_EQ(undisturbed.code, 0);
    ASSERT_GT(undisturbed.callsOf(Call::write), 1u);
    for (const Call call : {Call::write, Call::close}) {
        for (std::uint64_t number = 1; number <= undisturbed.callsOf(call); ++number) {
            for (const Effect effect : {Effect::error, Effect::errorsOn}) {
                const FaultyOutcome outcome =
                    write(KELADJUST_FAILING_CALLS, Fault{call, number, effect, ENOSPC});
                EXPECT_EQ(outcome.code, 0) << number;
                EXPECT_EQ(outcome.signal, 0) << number;
            }
        }
    }
}

TEST(CubeWriter, SaysSoOrGetsByWithoutMemory) {
    const FaultyOutcome undisturbed = write(KELADJUST_FAILING_ALLOCATIONS, std::nullopt);
    const std::uint64_t all = undisturbed.callsOf(Call::allocate);
    ASSERT_GT(all, 0u);
    for (std::uint64_t number = 1; number <= all; ++number) {
        for (const Effect effect : {Effect::error, Effect::errorsOn}) {
            const FaultyOutcome outcome =
                write(KELADJUST_FAILING_ALLOCATIONS, Fault{Call::allocate, number, effect, ENOMEM});
            EXPECT_EQ(outcome.signal, 0) << number;
            if (outcome.code == 0) {
                EXPECT_EQ(outcome.after, undisturbed.after) << number;
            } else {
                EXPECT_EQ(outcome.after, outcome.before) << number;
            }
        }
    }
}

}  // namespace
