// The engine is the same whatever state the host's thread is in that starts it.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <cfenv>
#include <cstdint>
#include <vector>

#include "engine/DisplayTest.h"

#if !defined(_WIN32)
#include <signal.h>
#include <unistd.h>
#endif

namespace {

using keladjust::test::HostPicture;
using keladjust::test::someSettings;

class HostState : public keladjust::test::Display {
protected:
    /// What the engine renders that runs.
    static std::vector<std::uint8_t> rendered() {
        HostPicture picture(256, 256, 32, IMAGE_FORMAT_BGRA);
        picture.fillRandom(1);
        const _AdjustParam record = someSettings();
        KeladjustRun wishes{};
        wishes.size = sizeof wishes;
        wishes.path = KELADJUST_GPU;
        EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_DONE);
        return picture.bytes();
    }
    static std::vector<std::uint8_t> renderedAfterAPlainStart() {
        EXPECT_TRUE(start());
        auto bytes = rendered();
        releaseOgre();
        return bytes;
    }
};

TEST_F(HostState, RoundingDoesNotReachTheEngine) {
    const auto expected = renderedAfterAPlainStart();
    for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        ASSERT_EQ(std::fesetround(rounding), 0);
        const bool started = start();
        const int after = std::fegetround();
        std::fesetround(FE_TONEAREST);
        ASSERT_TRUE(started);
        EXPECT_EQ(after, rounding);
        EXPECT_TRUE(rendered() == expected) << rounding;
        releaseOgre();
    }
}

#if defined(__GLIBC__)
TEST_F(HostState, TrapsDoNotReachTheEngine) {
    const auto expected = renderedAfterAPlainStart();
    ASSERT_NE(feenableexcept(FE_ALL_EXCEPT), -1);
    const bool started = start();
    const int after = fedisableexcept(FE_ALL_EXCEPT);
    ASSERT_TRUE(started);
    EXPECT_EQ(after, FE_ALL_EXCEPT);
    EXPECT_TRUE(rendered() == expected);
    ASSERT_NE(feenableexcept(FE_ALL_EXCEPT), -1);
    releaseOgre();
    fedisableexcept(FE_ALL_EXCEPT);
}
#endif

#if !defined(_WIN32)
int handled = 0;
pthread_t handledOn{};

// Signals that are sent to the process are for the host's threads: one that all of these hold back
// waits, whatever threads the engine and its driver have.
TEST_F(HostState, SignalsAreLeftToTheHost) {
    ASSERT_TRUE(start());
    rendered();
    struct sigaction action {};
    action.sa_handler = [](int) {
        ++handled;
        handledOn = pthread_self();
    };
    struct sigaction before {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, SIGUSR1);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &one, nullptr), 0);
    ASSERT_EQ(kill(getpid(), SIGUSR1), 0);
    rendered();
    EXPECT_EQ(handled, 0);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGUSR1), 1);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    EXPECT_EQ(handled, 1);
    EXPECT_TRUE(pthread_equal(handledOn, pthread_self()));
    sigaction(SIGUSR1, &before, nullptr);
}
#endif

}  // namespace
