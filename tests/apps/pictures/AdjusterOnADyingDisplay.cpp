// Run by itself, on a display that it ends.

#include <gtest/gtest.h>
#include <sys/types.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "pictures/Adjuster.h"
#include "support/Pictures.h"
#include "support/TwoPaths.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

// A driver may go on rendering or not, but what is told is true.
TEST(AdjusterOnADyingDisplay, TellsTheTruth) {
    const Photo colours = noise(61, 47, ChannelLayout::bgra);
    const Photo onCpu = adjusted(colours, GpuUse::never);
    Adjuster adjuster(GpuUse::whenPossible);
    Photo onGpu = colours;
    ASSERT_TRUE(adjuster.adjust(onGpu, someSettings()).onGpuPath);

    ASSERT_EQ(kill(static_cast<pid_t>(std::stol(std::getenv("WITH_DISPLAY_SERVER"))), SIGKILL), 0);
    usleep(200'000);
    for (int i = 0; i < 3; ++i) {
        Photo photo = colours;
        const bool rendered = adjuster.adjust(photo, someSettings()).onGpuPath;
        expectSamePixels(photo, rendered ? onGpu : onCpu);
    }
}

}  // namespace
