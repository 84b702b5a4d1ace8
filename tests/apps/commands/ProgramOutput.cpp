#include <gtest/gtest.h>

#include "codecs/Codec.h"
#include "files/InputFile.h"
#include "settings/Record.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;
namespace fs = std::filesystem;

class ProgramOutput : public testing::Test {
protected:
    ProgramOutput() { fs::copy_file(photograph("nature/FreshFlower.jpg"), photo); }

    using Names = std::vector<std::string>;

    TemporaryFolder folder;
    const fs::path photo = folder / "photo.jpg";
};

TEST_F(ProgramOutput, NeverGoesOverTheInputUnasked) {
    const Bytes before = readFile(photo);
    for (const auto& output : {photo, folder / "./photo.jpg", folder.path()}) {
        const Outcome outcome =
            runProgram({photo.string(), "--exposure", "20", "-o", output.string()});
        EXPECT_EQ(outcome.code, 2) << output;
    }
    EXPECT_EQ(readFile(photo), before);
}

TEST_F(ProgramOutput, ReplacesTheInputInPlace) {
    const double before = meanBrightness(decodeFile(photo));
    const Outcome outcome = runProgram({photo.string(), "--exposure", "20", "--in-place"});
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_GT(meanBrightness(decodeFile(photo)), before);
    EXPECT_EQ(folder.files(), Names{"photo.jpg"});
}

TEST_F(ProgramOutput, InPlaceLeavesABadPictureAlone) {
    Bytes bytes = readFile(photo);
    bytes.resize(bytes.size() / 2);
    fs::resize_file(photo, bytes.size());
    EXPECT_EQ(runProgram({photo.string(), "--exposure", "20", "--in-place"}).code, 1);
    EXPECT_EQ(readFile(photo), bytes);
    EXPECT_EQ(folder.files(), Names{"photo.jpg"});
}

TEST_F(ProgramOutput, InPlaceReplacesThePictureBehindALink) {
    const fs::path link = folder / "link.jpg";
    std::error_code error;
    fs::create_symlink(photo, link, error);
    if (error) FAIL() << "symbolic links are needed: " << error.message();
    const Bytes before = readFile(photo);
    EXPECT_EQ(runProgram({link.string(), "--exposure", "20", "--in-place"}).code, 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_NE(readFile(photo), before);
}

TEST_F(ProgramOutput, ReplacesAnOlderOutput) {
    const fs::path output = folder / "out.png";
    fs::copy_file(photo, output);
    EXPECT_EQ(runProgram({photo.string(), "-o", output.string()}).code, 0);
    expectSamePixels(decodeFile(output), decodeFile(photo));
    EXPECT_TRUE(pngCodec().recognises(readFile(output)));
}

TEST_F(ProgramOutput, CreatesFolders) {
    EXPECT_EQ(runProgram({photo.string(), "-o", (folder / "a/b/").string()}).code, 0);
    EXPECT_EQ(folder.files(), (Names{"a/b/photo.jpg", "photo.jpg"}));
}

TEST_F(ProgramOutput, GoesIntoAnExistingFolder) {
    fs::create_directory(folder / "out");
    EXPECT_EQ(runProgram({photo.string(), "-o", (folder / "out").string()}).code, 0);
    EXPECT_EQ(folder.files(), (Names{"out/photo.jpg", "photo.jpg"}));
}

TEST_F(ProgramOutput, FormatOverridesNames) {
    EXPECT_EQ(
        runProgram({photo.string(), "-o", (folder / "out/").string(), "--format", "webp"}).code, 0);
    EXPECT_TRUE(webpCodec().recognises(readFile(folder / "out/photo.webp")));
    EXPECT_EQ(
        runProgram({photo.string(), "-o", (folder / "a.jpg").string(), "--format", "png"}).code, 0);
    EXPECT_TRUE(pngCodec().recognises(readFile(folder / "a.jpg")));
}

TEST_F(ProgramOutput, NamesMayHoldAnyLetters) {
    const fs::path input = folder.path() / fs::path(u8"Grüße 写真.jpg");
    const fs::path output = folder.path() / fs::path(u8"ночь.png");
    fs::copy_file(photo, input);
    const Outcome outcome = runProgram({input.string(), "-o", output.string()});
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    expectSamePixels(decodeFile(output), decodeFile(photo));
}

TEST_F(ProgramOutput, SaysWhatItDoes) {
    const std::string output = (folder / "o.png").string();
    const Outcome normal = runProgram({photo.string(), "-o", output});
    EXPECT_EQ(normal.output, photo.string() + " -> " + output + '\n');
    const Outcome verbose = runProgram({photo.string(), "-o", output, "-v"});
    EXPECT_NE(verbose.output.find("JPEG"), std::string::npos);
    EXPECT_NE(verbose.output.find("CPU"), std::string::npos);
    const Outcome quiet = runProgram({photo.string(), "-o", output, "-q"});
    EXPECT_EQ(quiet.output + quiet.errors, "");
}

TEST_F(ProgramOutput, HelpNamesEverySettingAndItsRange) {
    const Outcome help = runProgram({"--help"});
    EXPECT_EQ(help.code, 0);
    const auto says = [&](const std::string& text) {
        return help.output.find(text) != std::string::npos;
    };
    for (const KeladjustSetting& setting : allSettings()) {
        EXPECT_TRUE(says(std::string("--") + setting.name + ' ')) << setting.name;
        EXPECT_TRUE(says(std::string(setting.group) + ':')) << setting.group;
        EXPECT_TRUE(says(rangeText(setting))) << setting.name;
    }
    EXPECT_TRUE(says("-100..100, identity 0; 50 is a factor of 2^0.6"));
    EXPECT_NE(help.output.find("Examples:"), std::string::npos);
    EXPECT_EQ(runProgram({"lut", "--help"}).code, 0);
    EXPECT_TRUE(runProgram({"--version"})
                    .output.starts_with(std::string("keladjust ") + keladjustVersion() + '\n'));
}

}  // namespace
