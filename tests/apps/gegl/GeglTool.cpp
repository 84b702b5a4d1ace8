// The operation in GEGL's own program, beside the command line.

#include <gtest/gtest.h>

#include <filesystem>

#include "codecs/PictureFile.h"
#include "files/AtomicFile.h"
#include "settings/Record.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

class GeglTool : public testing::Test {
protected:
    /// What both programs make of a picture of noise is the same.
    void expectSameAsCommandLine(const std::vector<std::pair<std::string, std::string>>& settings,
                                 bool alpha) {
        writeNoise(folder_ / "in.png", alpha);
        std::vector<std::string> ours = {folder_ / "in.png", "-o", folder_ / "program.png", "-q"};
        // The tool's own way to write has sixteen bits.
        std::vector<std::string> theirs = {folder_ / "in.png", "-o", folder_ / "unused.png", "--",
                                           "keladjust:adjust"};
        for (const auto& [name, value] : settings) {
            ours.push_back("--" + name);
            ours.push_back(value);
            theirs.push_back(name + "=" + value);
        }
        theirs.push_back("png-save");
        theirs.push_back("bitdepth=8");
        theirs.push_back("path=" + (folder_ / "tool.png").string());
        const Outcome program = runProgram(ours);
        ASSERT_EQ(program.code, 0) << program.errors;
        const Outcome tool = runProgram(KELADJUST_GEGL_TOOL, theirs);
        ASSERT_EQ(tool.code, 0) << tool.errors;
        expectSamePixels(decodeFile(folder_ / "tool.png"), decodeFile(folder_ / "program.png"));
    }

    static void writeNoise(const std::filesystem::path& path, bool alpha) {
        const Codec& png = *codecForExtension("png");
        writeFile(path, png.encode(noise(161, 119, ChannelLayout::bgra, alpha), {}));
    }

    const TemporaryFolder folder_;
};

TEST_F(GeglTool, GivesTheBytesOfTheCommandLine) {
    expectSameAsCommandLine({{"exposure", "20"}, {"clarity", "30"}, {"temperature", "9000"}},
                            false);
}

TEST_F(GeglTool, GivesTheBytesOfTheCommandLineForEverySettingAtOnce) {
    std::vector<std::pair<std::string, std::string>> settings;
    for (const KeladjustSetting& setting : allSettings()) {
        const float value = setting.usual + (setting.highest - setting.usual) / 4;
        settings.emplace_back(setting.name, std::to_string(static_cast<int>(value)));
    }
    expectSameAsCommandLine(settings, true);
}

TEST_F(GeglTool, TakesThePresetOfTheCommandLine) {
    ASSERT_EQ(runProgram({"--contrast", "20", "--blue-saturation", "30", "--save-preset",
                          folder_ / "lively.json"})
                  .code,
              0);
    expectSameAsCommandLine({{"preset", folder_ / "lively.json"}, {"vibrance", "15"}}, false);
}

}  // namespace
