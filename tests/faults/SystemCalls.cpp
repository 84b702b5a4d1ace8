// The program under every fault of the file system: each call in turn is refused, interrupted, cut
// short, or the last thing that the process does.

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>

#include "FaultyRun.h"

namespace {

using namespace keladjust::faults;

/// What can befall a call.
struct Mishap {
    Call call;
    Effect effect;
    int error = 0;
};

constexpr Mishap mishaps[] = {
    {Call::open, Effect::error, EMFILE},
    {Call::open, Effect::error, EACCES},
    {Call::open, Effect::interrupt},
    {Call::open, Effect::vanish},
    {Call::open, Effect::kill},
    {Call::read, Effect::error, EIO},
    {Call::read, Effect::interrupt},
    {Call::read, Effect::half},
    {Call::read, Effect::truncate},
    {Call::read, Effect::kill},
    {Call::write, Effect::error, ENOSPC},
    {Call::write, Effect::error, EIO},
    {Call::write, Effect::errorsOn, EDQUOT},
    {Call::write, Effect::interrupt},
    {Call::write, Effect::half},
    {Call::write, Effect::kill},
    {Call::write, Effect::killHalfway},
    {Call::sync, Effect::error, EIO},
    {Call::sync, Effect::interrupt},
    {Call::sync, Effect::kill},
    {Call::close, Effect::error, EIO},
    {Call::close, Effect::interrupt},
    {Call::close, Effect::kill},
    {Call::rename, Effect::error, EACCES},
    {Call::rename, Effect::error, EIO},
    {Call::rename, Effect::kill},
    {Call::status, Effect::error, EACCES},
    {Call::status, Effect::kill},
    {Call::permissions, Effect::error, EPERM},
    {Call::permissions, Effect::kill},
    {Call::createFolder, Effect::error, ENOSPC},
    {Call::createFolder, Effect::kill},
};

class SystemCalls : public testing::TestWithParam<Scenario> {
protected:
    FaultyOutcome run(const std::optional<Fault>& fault) const {
        return runWithFault(KELADJUST_PROGRAM, KELADJUST_FAILING_CALLS, GetParam().arguments,
                            fault);
    }

    /// A run ends well, or with a message that says what is wrong.
    void expectToldOrSurvived(const Fault& fault, const FaultyOutcome& outcome) {
        const bool told = outcome.errors.find("keladjust: ") != std::string::npos;
        const bool worked = madeAll(GetParam(), undisturbed, outcome);
        EXPECT_EQ(outcome.signal, 0);
        if (outcome.code == GetParam().code && worked) return;
        EXPECT_TRUE(outcome.code == 1 || outcome.code == 2) << outcome.code;
        EXPECT_TRUE(told);
        if (fault.error != 0 && fault.call != Call::status) {
            EXPECT_NE(outcome.errors.find(std::strerror(fault.error)), std::string::npos);
            ++failures[fault.call];
        }
    }

    void expectRight(const Fault& fault) {
        const FaultyOutcome outcome = run(fault);
        const testing::Message message = testing::Message() << fault << '\n' << outcome.errors;
        SCOPED_TRACE(message);
        switch (fault.effect) {
            case Effect::interrupt:
            case Effect::half:
                expectUndisturbed(undisturbed, outcome);
                break;
            case Effect::kill:
            case Effect::killHalfway:
                EXPECT_EQ(outcome.signal, SIGKILL);
                break;
            default:
                expectToldOrSurvived(fault, outcome);
        }
        // Those two have changed what was there themselves.
        if (fault.effect == Effect::truncate || fault.effect == Effect::vanish) return;
        expectWholeFiles(GetParam(), undisturbed, outcome);
    }

    const FaultyOutcome undisturbed = run(std::nullopt);
    std::map<Call, int> failures;  ///< how many faults of a kind a run did not survive
};

TEST_P(SystemCalls, AreToldOrSurvivedAndLeaveWholeFiles) {
    ASSERT_EQ(undisturbed.code, GetParam().code) << undisturbed.errors;
    for (const std::string& name : GetParam().outputs) {
        ASSERT_TRUE(undisturbed.after.contains(name)) << name;
    }
    for (const Mishap& mishap : mishaps) {
        const std::uint64_t calls = undisturbed.callsOf(mishap.call);
        for (std::uint64_t number = 1; number <= calls; ++number) {
            expectRight({mishap.call, number, mishap.effect, mishap.error});
        }
    }
    // Nothing goes unnoticed that can cost a picture.
    for (const Call call : {Call::open, Call::write, Call::close, Call::rename}) {
        EXPECT_GT(failures[call], 0) << callNames[static_cast<std::size_t>(call)];
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, SystemCalls, testing::ValuesIn(scenarios()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
