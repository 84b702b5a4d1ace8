// The record's description, as front ends read it.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "support/HostPicture.h"

namespace {

using keladjust::test::HostPicture;

std::vector<KeladjustSetting> settings() {
    int count = 0;
    const KeladjustSetting* const first = keladjustSettings(&count);
    return {first, first + count};
}

void put(_AdjustParam& record, const KeladjustSetting& setting, float value) {
    char* const slot = reinterpret_cast<char*>(&record) + 4 * setting.slot;
    if (setting.isInteger != 0) {
        const auto whole = static_cast<std::int32_t>(value);
        std::memcpy(slot, &whole, sizeof whole);
    } else {
        std::memcpy(slot, &value, sizeof value);
    }
}

TEST(Settings, CoverTheRecordInItsOrder) {
    const std::vector<KeladjustSetting> all = settings();
    ASSERT_EQ(all.size() * 4, sizeof(_AdjustParam));
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].slot, static_cast<int>(i));
        EXPECT_EQ(all[i].isInteger, i == 0 ? 1 : 0);
    }
    EXPECT_EQ(keladjustSettings(nullptr), keladjustSettings(nullptr));
}

TEST(Settings, StandForTheFieldsTheyAreNamedAfter) {
    _AdjustParam record{};
    const auto expectField = [&](const char* name, const float& field) {
        for (const KeladjustSetting& setting : settings()) {
            if (std::string(name) != setting.name) continue;
            put(record, setting, 3.0f);
            EXPECT_EQ(field, 3.0f) << name;
            put(record, setting, 0.0f);
            return;
        }
        ADD_FAILURE() << name << " is missing";
    };
    using P = _AdjustParam;
    P& p = record;
    expectField("tint", p.tint);
    expectField("exposure", p.exposure);
    expectField("brightness", p.brightness);
    expectField("contrast", p.contrast);
    expectField("vibrance", p.vibrance);
    expectField("saturation", p.saturation);
    expectField("highlights", p.highlights);
    expectField("shadows", p.shadows);
    expectField("whites", p.whites);
    expectField("blacks", p.blacks);
    expectField("clarity", p.clarity);
    expectField("sharpen", p.sharpen);
    const char* const words[KELADJUST_RANGE_COUNT] = {"red",     "orange", "yellow", "green",
                                                      "magenta", "purple", "blue",   "aqua"};
    for (int i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        const std::string word = words[i];
        expectField((word + "-min-degree").c_str(), p.range[i].minDegree);
        expectField((word + "-max-degree").c_str(), p.range[i].maxDegree);
        expectField((word + "-hue").c_str(), p.range[i].hue);
        expectField((word + "-saturation").c_str(), p.range[i].saturation);
        expectField((word + "-brightness").c_str(), p.range[i].brightness);
    }
    expectField("vignette-amount", p.vignetteAmount);
    expectField("vignette-size", p.vignetteSize);
    expectField("vignette-roundness", p.vignetteRoundness);
    expectField("vignette-feather", p.vignetteFeather);
    expectField("vignette-exposure", p.vignetteExposure);
    expectField("vignette-highlights", p.vignetteHighlights);
    expectField("distortion", p.distortion);
    expectField("fringing", p.fringing);
    expectField("dehaze", p.dehaze);
    expectField("diffuse", p.diffuse);
    expectField("colour-noise-reduction", p.colourNoiseReduction);
    expectField("luminance-noise-reduction", p.luminanceNoiseReduction);
    EXPECT_STREQ(settings()[0].name, "temperature");
}

TEST(Settings, HaveTextsForEveryFrontEnd) {
    std::set<std::string> names;
    std::set<std::string> labels;
    for (const KeladjustSetting& setting : settings()) {
        EXPECT_TRUE(names.insert(setting.name).second) << setting.name;
        EXPECT_TRUE(labels.insert(setting.label).second) << setting.label;
        for (const char c : std::string(setting.name)) {
            EXPECT_TRUE(std::islower(static_cast<unsigned char>(c)) != 0 || c == '-')
                << setting.name;
        }
        bool wordBegins = true;
        for (const char c : std::string(setting.label)) {
            if (wordBegins) {
                EXPECT_NE(std::isupper(static_cast<unsigned char>(c)), 0) << setting.label;
            }
            wordBegins = c == ' ';
        }
        EXPECT_STRNE(setting.group, "");
        const std::string help = setting.help;
        EXPECT_FALSE(help.empty()) << setting.name;
        EXPECT_EQ(help.find('\n'), std::string::npos) << setting.name;
    }
}

TEST(Settings, OfOneGroupStandTogether) {
    std::set<std::string> groups;
    std::string last;
    for (const KeladjustSetting& setting : settings()) {
        // What joins later takes a slot behind all groups.
        if (setting.slot >= 65 || last == setting.group) continue;
        last = setting.group;
        EXPECT_TRUE(groups.insert(last).second) << last;
    }
}

TEST(Settings, HaveRangesAroundTheirValues) {
    for (const KeladjustSetting& setting : settings()) {
        EXPECT_LT(setting.lowest, setting.highest) << setting.name;
        for (const float value : {setting.identity, setting.usual}) {
            EXPECT_GE(value, setting.lowest) << setting.name;
            EXPECT_LE(value, setting.highest) << setting.name;
        }
    }
}

TEST(Settings, LeaveThePictureAloneAtIdentityAndAsFrontEndsStart) {
    _AdjustParam atIdentity{};
    _AdjustParam usual{};
    for (const KeladjustSetting& setting : settings()) {
        put(atIdentity, setting, setting.identity);
        put(usual, setting, setting.usual);
    }
    HostPicture picture(61, 43, 24, IMAGE_FORMAT_BGR);
    const auto before = picture.fillRandom(3).bytes();
    doAdjust(picture.image(), atIdentity);
    EXPECT_EQ(picture.bytes(), before);
    doAdjust(picture.image(), usual);
    EXPECT_EQ(picture.bytes(), before);
}

TEST(Settings, StartColourRangesAtTheirUsualBounds) {
    const float bounds[KELADJUST_RANGE_COUNT][2] = {{300, 30},  {0, 60},    {30, 90},   {60, 180},
                                                    {270, 330}, {240, 300}, {180, 300}, {120, 240}};
    for (std::size_t i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        const std::vector<KeladjustSetting> all = settings();
        EXPECT_EQ(all[13 + 5 * i].usual, bounds[i][0]) << all[13 + 5 * i].name;
        EXPECT_EQ(all[14 + 5 * i].usual, bounds[i][1]) << all[14 + 5 * i].name;
    }
}

// Of what lies beyond the ends of the slider, the warm side changes nothing any more.
TEST(Settings, EndTemperatureWhereNothingChangesAnyMore) {
    const KeladjustSetting temperature = settings()[0];
    HostPicture picture(61, 43, 24, IMAGE_FORMAT_BGR);
    picture.fillRandom(3);
    const auto adjusted = [&](float setting) {
        HostPicture copy(picture);
        temperatureAdjustment(copy.image(), static_cast<long>(setting));
        return copy.bytes();
    };
    EXPECT_EQ(adjusted(temperature.highest), adjusted(temperature.highest + 5000));
    EXPECT_NE(adjusted(temperature.highest), adjusted(temperature.highest - 300));
    EXPECT_NE(adjusted(temperature.lowest), adjusted(temperature.lowest + 300));
}

}  // namespace
