#include "settings/Fields.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "text/Failure.h"

namespace {

using namespace keladjust::app;

TEST(Fields, CoverEverySlotOfTheRecordOnceAndInOrder) {
    ASSERT_EQ(fields().size() * 4, sizeof(_AdjustParam));
    std::size_t offset = 0;
    for (const Field& field : fields()) {
        EXPECT_EQ(field.offset, offset) << field.name;
        offset += 4;
    }
}

TEST(Fields, HaveDistinctNamesThatAreFound) {
    std::set<std::string> names;
    for (const Field& field : fields()) {
        EXPECT_TRUE(names.insert(field.name).second) << field.name;
        EXPECT_EQ(findField(field.name), &field);
    }
    EXPECT_EQ(findField("exposur"), nullptr);
}

TEST(Fields, WriteTheMemberThatTheyAreNamedAfter) {
    const auto written = [](const char* name, double value) {
        _AdjustParam record{};
        findField(name)->write(record, value);
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

TEST(Fields, ReadBackWhatTheyWrote) {
    _AdjustParam record{};
    double value = 1;
    for (const Field& field : fields()) field.write(record, value++);
    value = 1;
    for (const Field& field : fields()) EXPECT_EQ(field.read(record), value++) << field.name;
}

TEST(Fields, IdentityLiesInTheUsefulRange) {
    const _AdjustParam record = identityRecord();
    EXPECT_EQ(record.temperature, 11500);
    for (const Field& field : fields()) {
        EXPECT_GE(field.identity, field.minimum) << field.name;
        EXPECT_LE(field.identity, field.maximum) << field.name;
    }
}

// A hue that no band covers could not be changed without typing degrees.
TEST(Fields, UsualBandsCoverEveryHue) {
    const _AdjustParam record = identityRecord();
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

TEST(Fields, UsualBandsHaveTheirColoursInTheMiddle) {
    const _AdjustParam record = identityRecord();
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

TEST(Fields, RefuseWhatTheSlotCannotHold) {
    const Field& temperature = *findField("temperature");
    const Field& exposure = *findField("exposure");
    EXPECT_NO_THROW(temperature.check(-9000, "x"));
    EXPECT_THROW(temperature.check(9000.5, "x"), Failure);
    EXPECT_THROW(temperature.check(3e9, "x"), Failure);
    EXPECT_NO_THROW(exposure.check(1e30, "x"));
    EXPECT_THROW(exposure.check(1e39, "x"), Failure);
    EXPECT_THROW(exposure.check(std::nan(""), "x"), Failure);
    EXPECT_THROW(exposure.check(std::numeric_limits<double>::infinity(), "x"), Failure);
}

}  // namespace
