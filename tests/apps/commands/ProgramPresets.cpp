#include <gtest/gtest.h>

#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

class ProgramPresets : public testing::Test {
protected:
    std::string preset(const std::string& name, std::string_view json) {
        writeFile(folder / name, json);
        return (folder / name).string();
    }

    Bytes adjusted(std::vector<std::string> options) {
        const std::string output = (folder / "out.png").string();
        options.insert(options.begin(), {photo, "-o", output});
        const Outcome outcome = runProgram(options);
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        return readFile(output);
    }

    TemporaryFolder folder;
    const std::string photo = photograph("nature/FreshFlower.jpg");
};

TEST_F(ProgramPresets, DoWhatTheOptionsDo) {
    const std::string look = preset("look.json", R"({"exposure": 20, "red-hue": 15})");
    EXPECT_EQ(adjusted({"--preset", look}), adjusted({"--exposure", "20", "--red-hue", "15"}));
}

TEST_F(ProgramPresets, StackAndGiveWayToOptions) {
    const std::string first = preset("1.json", R"({"exposure": 20, "contrast": 30, "tint": 5})");
    const std::string second = preset("2.json", R"({"exposure": -10, "tint": 6})");
    const Bytes expected = adjusted({"--exposure", "-10", "--contrast", "30", "--tint", "7"});
    // An explicit option wins wherever it stands.
    EXPECT_EQ(adjusted({"--tint", "7", "--preset", first, "--preset", second}), expected);
    EXPECT_EQ(adjusted({"--preset", first, "--preset", second, "--tint", "7"}), expected);
    EXPECT_NE(adjusted({"--preset", second, "--preset", first, "--tint", "7"}), expected);
}

TEST_F(ProgramPresets, SavedOnesComeBackTheSame) {
    const std::string first = preset("1.json", R"({"contrast": 30, "temperature": 9000})");
    const std::string saved = (folder / "saved.json").string();
    const Outcome outcome =
        runProgram({"--preset", first, "--vibrance", "12.5", "--save-preset", saved});
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(adjusted({"--preset", saved}),
              adjusted({"--contrast", "30", "--temperature", "9000", "--vibrance", "12.5"}));
    const Bytes text = readFile(saved);
    EXPECT_EQ(std::string(text.begin(), text.end()),
              "{\n    \"temperature\": 9000,\n    \"contrast\": 30,\n    \"vibrance\": 12.5\n}\n");
}

TEST_F(ProgramPresets, CanBeSavedWhileAdjusting) {
    adjusted({"--exposure", "3", "--save-preset", (folder / "p.json").string()});
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"out.png", "p.json"}));
}

TEST_F(ProgramPresets, LastOfARepeatedOptionWins) {
    EXPECT_EQ(adjusted({"--exposure", "50", "--exposure", "5"}), adjusted({"--exposure", "5"}));
}

}  // namespace
