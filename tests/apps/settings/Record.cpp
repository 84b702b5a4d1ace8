#include "settings/Record.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "pictures/Adjuster.h"
#include "support/Pictures.h"
#include "text/Failure.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

TEST(Record, FindsASettingByItsName) {
    std::set<std::string> names;
    for (const KeladjustSetting& setting : allSettings()) {
        EXPECT_TRUE(names.insert(setting.name).second) << setting.name;
        EXPECT_EQ(findSetting(setting.name), &setting);
    }
    EXPECT_EQ(names.size() * 4, sizeof(_AdjustParam));
    EXPECT_EQ(findSetting("exposur"), nullptr);
}

TEST(Record, HasAMemberForEachName) {
    const auto written = [](const char* name, double value) {
        _AdjustParam record{};
        setValue(record, *findSetting(name), value);
        return record;
    };
    EXPECT_EQ(written("temperature", 9000).temperature, 9000);
    EXPECT_EQ(written("sharpen", 3.5).sharpen, 3.5f);
    EXPECT_EQ(written("red-min-degree", 1).range[KELADJUST_RANGE_RED].minDegree, 1.0f);
    EXPECT_EQ(written("orange-max-degree", 2).range[KELADJUST_RANGE_ORANGE].maxDegree, 2.0f);
    EXPECT_EQ(written("yellow-hue", 3).range[KELADJUST_RANGE_YELLOW].hue, 3.0f);
    EXPECT_EQ(written("green-saturation", 4).range[KELADJUST_RANGE_GREEN].saturation, 4.0f);
    EXPECT_EQ(written("magenta-brightness", 5).range[KELADJUST_RANGE_MAGENTA].brightness, 5.0f);
    EXPECT_EQ(written("purple-hue", 6).range[KELADJUST_RANGE_PURPLE].hue, 6.0f);
    EXPECT_EQ(written("blue-hue", 7).range[KELADJUST_RANGE_BLUE].hue, 7.0f);
    EXPECT_EQ(written("aqua-hue", 8).range[KELADJUST_RANGE_AQUA].hue, 8.0f);
    EXPECT_EQ(written("vignette-feather", 9).vignetteFeather, 9.0f);
    EXPECT_EQ(written("luminance-noise-reduction", 10).luminanceNoiseReduction, 10.0f);
}

TEST(Record, HoldsWhatWasSet) {
    _AdjustParam record{};
    double value = 1;
    for (const KeladjustSetting& setting : allSettings()) setValue(record, setting, value++);
    value = 1;
    for (const KeladjustSetting& setting : allSettings()) {
        EXPECT_EQ(valueIn(record, setting), value++) << setting.name;
    }
}

TEST(Record, LeavesPicturesAloneToStartWith) {
    const Photo before = noise(61, 47, ChannelLayout::bgra);
    Photo after = before;
    Adjuster(GpuUse::never).adjust(after, usualRecord());
    expectSamePixels(after, before);
}

// With everything at 0 but the amount there is no inside.
TEST(Record, StartsWithAVignetteThatSparesTheMiddle) {
    const Photo before = noise(61, 47, ChannelLayout::bgra);
    Photo after = before;
    _AdjustParam record = usualRecord();
    record.vignetteAmount = -60;
    Adjuster(GpuUse::never).adjust(after, record);
    EXPECT_LT(after.pixel(0, 0)[1], before.pixel(0, 0)[1]);
    EXPECT_EQ(after.pixel(30, 23)[1], before.pixel(30, 23)[1]);
}

// A hue that no band covers could not be changed without typing degrees.
TEST(Record, UsualBandsCoverEveryHue) {
    const _AdjustParam record = usualRecord();
    for (int degree = 0; degree < 360; ++degree) {
        int bands = 0;
        for (const _AdjustColourRange& range : record.range) {
            const float hue = static_cast<float>(degree) + 0.5f;
            const bool wraps = range.minDegree > range.maxDegree;
            const bool inside = wraps ? hue > range.minDegree || hue < range.maxDegree
                                      : hue > range.minDegree && hue < range.maxDegree;
            bands += inside ? 1 : 0;
        }
        EXPECT_GE(bands, 1) << degree;
    }
}

TEST(Record, UsualBandsHaveTheirColoursInTheMiddle) {
    const _AdjustParam record = usualRecord();
    const auto middle = [&](int place) {
        return (record.range[place].minDegree + record.range[place].maxDegree) / 2;
    };
    const _AdjustColourRange& red = record.range[KELADJUST_RANGE_RED];
    EXPECT_GT(red.minDegree, red.maxDegree) << "red lies about 0";
    EXPECT_EQ(middle(KELADJUST_RANGE_ORANGE), 30);
    EXPECT_EQ(middle(KELADJUST_RANGE_YELLOW), 60);
    EXPECT_EQ(middle(KELADJUST_RANGE_GREEN), 120);
    EXPECT_EQ(middle(KELADJUST_RANGE_AQUA), 180);
    EXPECT_EQ(middle(KELADJUST_RANGE_BLUE), 240);
    EXPECT_EQ(middle(KELADJUST_RANGE_PURPLE), 270);
    EXPECT_EQ(middle(KELADJUST_RANGE_MAGENTA), 300);
}

TEST(Record, RefusesWhatASlotCannotHold) {
    const KeladjustSetting& temperature = *findSetting("temperature");
    const KeladjustSetting& exposure = *findSetting("exposure");
    EXPECT_NO_THROW(checkValue(temperature, -9000, "x"));
    EXPECT_THROW(checkValue(temperature, 9000.5, "x"), Failure);
    EXPECT_THROW(checkValue(temperature, 3e9, "x"), Failure);
    EXPECT_NO_THROW(checkValue(exposure, 1e30, "x"));
    EXPECT_THROW(checkValue(exposure, 1e39, "x"), Failure);
    EXPECT_THROW(checkValue(exposure, std::nan(""), "x"), Failure);
    EXPECT_THROW(checkValue(exposure, std::numeric_limits<double>::infinity(), "x"), Failure);
}

}  // namespace
