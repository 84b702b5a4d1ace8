#include <gtest/gtest.h>

#include <atomic>

#include "pictures/Adjuster.h"
#include "settings/Record.h"
#include "support/Pictures.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

std::atomic<int> timesAsked{0};

class Cancelling : public testing::Test {
protected:
    Cancelling() {
        timesAsked = 0;
        setValue(record, *findSetting("colour-noise-reduction"), 50);
    }

    _AdjustParam record = usualRecord();
};

TEST_F(Cancelling, BeforeTheFirstStageLeavesThePictureAsItWas) {
    const Photo before = noise(61, 47, ChannelLayout::bgra);
    Photo photo = before;
    Adjuster adjuster(GpuUse::never, 0, [] { return true; });
    EXPECT_THROW(adjuster.adjust(photo, record), Cancelled);
    expectSamePixels(photo, before);
}

// A picture large enough for the library to ask more than once.
TEST_F(Cancelling, EndsAStageInItsMiddle) {
    Photo photo = noise(2000, 1500, ChannelLayout::bgra);
    Adjuster adjuster(GpuUse::never, 0, [] { return ++timesAsked > 1; });
    EXPECT_THROW(adjuster.adjust(photo, record), Cancelled);
    EXPECT_EQ(timesAsked, 2);
}

TEST_F(Cancelling, AdjustsThePictureIfNobodyAsksForIt) {
    const Photo before = noise(61, 47, ChannelLayout::bgra);
    Photo asked = before;
    Photo alone = before;
    Adjuster(GpuUse::never, 0, [] { return ++timesAsked < 0; }).adjust(asked, record);
    Adjuster(GpuUse::never).adjust(alone, record);
    EXPECT_GE(timesAsked, 1);
    expectSamePixels(asked, alone);
}

}  // namespace
