// Files that decode to far more than they hold: refused in words that help, and none of their size
// is ever taken as memory.

#include <gtest/gtest.h>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/HostilePictures.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

class ProgramBombs : public testing::Test {
protected:
    std::string file(const HostilePicture& picture) {
        const auto path = folder / picture.name;
        writeFile(path, std::span<const unsigned char>(picture.bytes));
        return path.string();
    }

    std::string png(std::uint32_t width, std::uint32_t height, ChannelLayout layout) {
        const auto path = folder / "photo.png";
        writeFile(path, pngCodec().encode(Photo(width, height, layout), {}));
        return path.string();
    }

    TemporaryFolder folder;
    const std::string output = (folder / "out.png").string();
};

TEST_F(ProgramBombs, AreToldFromPicturesThatOnlyLookOdd) {
    for (const HostilePicture& picture : hostilePictures()) {
        SCOPED_TRACE(picture.name);
        const Outcome outcome = runProgram({file(picture), "-o", output});
        EXPECT_EQ(outcome.code, picture.complaint.empty() ? 0 : 1) << outcome.errors;
        EXPECT_NE(outcome.errors.find(picture.complaint), std::string::npos) << outcome.errors;
        EXPECT_EQ(std::filesystem::exists(output), picture.complaint.empty());
        std::filesystem::remove(output);
    }
}

TEST_F(ProgramBombs, AreRefusedByEveryCommandThatReadsPictures) {
    const std::string picture = file(hostilePictures().front());
    const std::vector<std::vector<std::string>> commands = {
        {picture, "-o", output},
        {picture, "--in-place"},
        {picture, "--sheet", "clarity", "--compare", "-o", output},
        {"bench", picture, "-o", (folder / "chart.svg").string()}};
    const Bytes before = readFile(picture);
    for (const auto& arguments : commands) {
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_NE(outcome.errors.find("--max-pixels 4290250000"), std::string::npos)
            << outcome.errors;
        EXPECT_EQ(folder.files(), std::vector<std::string>{"empty.jpg"});
        EXPECT_EQ(readFile(picture), before);
    }
}

TEST_F(ProgramBombs, BoundCountsWidthTimesHeight) {
    const std::string picture = png(40, 30, ChannelLayout::grey);
    EXPECT_EQ(runProgram({picture, "--max-pixels", "1200", "-o", output}).code, 0);
    const Outcome refused = runProgram({picture, "--max-pixels", "1199", "-o", output});
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.errors.find("too large (40 x 30 pixels; allowed are 1199)"),
              std::string::npos)
        << refused.errors;
    EXPECT_EQ(runProgram({"bench", picture, "--max-pixels", "1199"}).code, 1);
}

// Nobody is kept from what they know to be a picture.
TEST_F(ProgramBombs, BoundThatIsGivenHoldsForSmallFilesToo) {
    const HostilePicture flat = fullestSmallPictures().back();
    Bytes bytes = flat.bytes;
    bytes[23] = 0xFF;  // eight bits of the height, which begins in the middle of the byte before
    const std::string picture = file({flat.name, bytes, ""});
    const Outcome refused = runProgram({picture, "-o", output});
    EXPECT_EQ(refused.code, 1);
    const std::string advice = "if you trust it, add --max-pixels ";
    const auto found = refused.errors.find(advice);
    ASSERT_NE(found, std::string::npos) << refused.errors;
    const std::string pixels =
        std::to_string(std::stoul(refused.errors.substr(found + advice.size())));
    EXPECT_EQ(runProgram({picture, "--max-pixels", pixels, "-o", output}).code, 0);
}

TEST_F(ProgramBombs, BoundIsAWholeNumber) {
    for (const char* text : {"0", "-1", "many", "4294967297", "1e6"}) {
        const Outcome outcome = runProgram({"a.jpg", "--max-pixels", text, "-o", output});
        EXPECT_EQ(outcome.code, 2) << text;
        EXPECT_NE(outcome.errors.find("--max-pixels"), std::string::npos) << outcome.errors;
    }
}

TEST_F(ProgramBombs, PresetThatIsFarTooLongIsRefused) {
    writeFile(folder / "long.json", std::string(2'000'000, ' '));
    const Outcome outcome =
        runProgram({"lut", "--preset", (folder / "long.json").string(), "-o", output});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_NE(outcome.errors.find("long.json: is larger than 1048576 bytes"), std::string::npos)
        << outcome.errors;
}

}  // namespace
