#include "settings/Preset.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstring>

#include "text/Failure.h"
#include "text/NearestName.h"

namespace {

using namespace keladjust::app;

std::string refusal(const std::string& json) {
    try {
        settingsFromPreset(json, "look.json");
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

double valueOf(const Settings& settings, const char* name) {
    return valueIn(settings.record(), *findSetting(name));
}

TEST(Preset, LeavesWhatItDoesNotNameAsUsual) {
    const Settings settings = settingsFromPreset(R"({"exposure": 20, "temperature": 9000})", "p");
    _AdjustParam expected = usualRecord();
    expected.exposure = 20;
    expected.temperature = 9000;
    const _AdjustParam record = settings.record();
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
}

TEST(Preset, StacksSettingBySetting) {
    Settings settings = settingsFromPreset(R"({"exposure": 20, "contrast": 5})", "p");
    settings.apply(settingsFromPreset(R"({"exposure": 0, "tint": 7})", "q"));
    EXPECT_EQ(valueOf(settings, "exposure"), 0);
    EXPECT_EQ(valueOf(settings, "contrast"), 5);
    EXPECT_EQ(valueOf(settings, "tint"), 7);
}

TEST(Preset, SuggestsTheNearestNameForAnUnknownKey) {
    EXPECT_EQ(refusal(R"({"exposre": 1})"),
              "look.json: unknown setting \"exposre\"; did you mean exposure?");
    EXPECT_EQ(refusal(R"({"redHue": 1})"),
              "look.json: unknown setting \"redHue\"; did you mean red-hue?");
    EXPECT_EQ(refusal(R"({"zzzzzzzz": 1})"), "look.json: unknown setting \"zzzzzzzz\"");
}

TEST(Preset, NamesTheKeyOfAValueOfTheWrongKind) {
    EXPECT_EQ(refusal(R"({"tint": "5"})"), "look.json: \"tint\" must be a number, not string");
    EXPECT_EQ(refusal(R"({"tint": null})"), "look.json: \"tint\" must be a number, not null");
    EXPECT_EQ(refusal(R"({"tint": [5]})"), "look.json: \"tint\" must be a number, not array");
    EXPECT_NE(refusal(R"({"temperature": 9000.5})").find("whole number"), std::string::npos);
}

TEST(Preset, RefusesTextThatIsNoObject) {
    EXPECT_NE(refusal("").find("not valid JSON"), std::string::npos);
    EXPECT_NE(refusal(R"({"tint": 5)").find("not valid JSON"), std::string::npos);
    EXPECT_NE(refusal(R"({"tint": 1e999})").find("not valid JSON"), std::string::npos);
    EXPECT_NE(refusal("[1]").find("one JSON object"), std::string::npos);
}

TEST(Preset, RoundTripsEverySetting) {
    Settings settings;
    double value = -3.25;
    for (const KeladjustSetting& setting : allSettings()) {
        settings.set(setting, setting.isInteger != 0 ? 9000 : value);
        value += 1.1;
    }
    const Settings again = settingsFromPreset(presetFromSettings(settings), "p");
    for (const KeladjustSetting& setting : allSettings()) {
        EXPECT_EQ(again.get(setting), settings.get(setting)) << setting.name;
    }
}

// Otherwise a saved preset would undo every preset before it in a stack.
TEST(Preset, HoldsOnlyWhatWasSet) {
    Settings settings;
    settings.set(*findSetting("exposure"), 0);
    settings.set(*findSetting("tint"), 0.5);
    const auto json = nlohmann::json::parse(presetFromSettings(settings));
    EXPECT_EQ(json, nlohmann::json::parse(R"({"exposure": 0, "tint": 0.5})"));
    EXPECT_EQ(presetFromSettings(Settings()), "{}\n");
}

TEST(NearestName, TakesTheFewestEdits) {
    const std::vector<std::string> names = {"exposure", "vignette-exposure", "contrast"};
    EXPECT_EQ(nearestName("exposur", names), "exposure");
    EXPECT_EQ(nearestName("vignete-exposure", names), "vignette-exposure");
    EXPECT_EQ(nearestName("contarst", names), "contrast");
    EXPECT_EQ(nearestName("quality", names), std::nullopt);
}

}  // namespace
