#include "settings/SettingsText.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "support/TemporaryFolder.h"
#include "text/Failure.h"

namespace {

using namespace keladjust::app;
using keladjust::test::TemporaryFolder;

std::string textRefusal(const std::string& text) {
    try {
        settingsFromText(text);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

void expectRecord(const Settings& settings, const _AdjustParam& expected) {
    const _AdjustParam record = settings.record();
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
}

TEST(SettingsText, TakesNamesAndNumbersInTurn) {
    _AdjustParam expected = usualRecord();
    expected.exposure = 20;
    expected.temperature = 9000;
    expected.range[KELADJUST_RANGE_RED].hue = -5.5f;
    expectRecord(settingsFromText("  exposure 20 temperature 9000\tred-hue -5.5 "), expected);
}

TEST(SettingsText, TakesTheLastOfARepeatedName) {
    _AdjustParam expected = usualRecord();
    expected.exposure = 7;
    expectRecord(settingsFromText("exposure 20 exposure 7"), expected);
}

TEST(SettingsText, SetsNothingWhenEmpty) {
    EXPECT_TRUE(settingsFromText("").empty());
    EXPECT_TRUE(settingsFromText("  \n").empty());
}

// Names of files may have spaces, and look like settings.
TEST(SettingsText, TakesAFileOfThatNameForAPreset) {
    const TemporaryFolder folder;
    _AdjustParam expected = usualRecord();
    expected.tint = 12;
    for (const char* name : {"look.json", "my look 2", "exposure 20"}) {
        std::ofstream(folder / name) << R"({"tint": 12})";
        expectRecord(settingsFromText((folder / name).string()), expected);
    }
}

TEST(SettingsText, SaysWhatIsWrong) {
    EXPECT_EQ(textRefusal("exposre 20"), "unknown setting \"exposre\"; did you mean exposure?");
    EXPECT_EQ(textRefusal("evening.json"),
              "\"evening.json\" is neither a preset file nor a setting");
    EXPECT_EQ(textRefusal("exposure"),
              "exposure needs a number, not \"\"; useful values are -100..100, identity 0");
    EXPECT_EQ(textRefusal("tint 1 exposure twenty"),
              "exposure needs a number, not \"twenty\"; useful values are -100..100, identity 0");
    EXPECT_EQ(textRefusal("exposure nan"),
              "exposure needs a finite number; useful values are -100..100, identity 0");
    EXPECT_NE(textRefusal("temperature 9000.5").find("whole number"), std::string::npos);
}

TEST(SettingsText, NamesThePresetThatIsWrong) {
    const TemporaryFolder folder;
    const auto preset = folder / "look.json";
    std::ofstream(preset) << R"({"tint": "blue"})";
    EXPECT_EQ(textRefusal(preset.string()),
              preset.string() + ": \"tint\" must be a number, not string");
    EXPECT_EQ(
        textRefusal(folder.path().string()).find(folder.path().string() + ": this is a folder"),
        0u);
}

}  // namespace
