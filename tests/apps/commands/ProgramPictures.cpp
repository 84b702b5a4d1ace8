#include <gtest/gtest.h>

#include <algorithm>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "pictures/Comparison.h"
#include "pictures/ContactSheet.h"
#include "pictures/DigitFont.h"
#include "support/OddPictures.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

class ProgramPictures : public testing::Test {
protected:
    Photo adjusted(const std::string& input, std::vector<std::string> options = {}) {
        const std::string output = (folder / "adjusted.png").string();
        options.insert(options.begin(), {input, "-o", output});
        outcome = runProgram(options);
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        return decodeFile(output);
    }

    TemporaryFolder folder;
    Outcome outcome;
    const std::string dune = photograph("nature/Dune.jpg");
    const std::string storm = photograph("nature/Storm.jpg");
};

TEST_F(ProgramPictures, IdentityKeepsEveryPixel) {
    for (const std::string& photo : {dune, storm}) {
        expectSamePixels(adjusted(photo), decodeFile(photo));
        expectSamePixels(adjusted(photo, {"--exposure", "0", "--temperature", "11500",
                                          "--red-min-degree", "10"}),
                         decodeFile(photo));
    }
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(ProgramPictures, IdentityKeepsEveryPixelInEveryLosslessFormat) {
    const std::string tiff = (folder / "a.tif").string();
    const std::string webp = (folder / "a.webp").string();
    const std::string png = (folder / "a.png").string();
    EXPECT_EQ(runProgram({dune, "-o", tiff}).code, 0);
    EXPECT_EQ(runProgram({tiff, "-o", webp, "--lossless"}).code, 0);
    EXPECT_EQ(runProgram({webp, "-o", png}).code, 0);
    for (const std::string& file : {tiff, webp, png}) {
        expectSamePixels(decodeFile(file), decodeFile(dune));
    }
}

TEST_F(ProgramPictures, ExposureBrightensAndDarkens) {
    const double before = meanBrightness(decodeFile(dune));
    EXPECT_GT(meanBrightness(adjusted(dune, {"--exposure", "20"})), before + 5);
    EXPECT_LT(meanBrightness(adjusted(dune, {"--exposure", "-20"})), before - 5);
    EXPECT_LT(meanBrightness(adjusted(dune, {"--exposure=-20"})), before - 5);
}

TEST_F(ProgramPictures, TemperatureWarmsAndCools) {
    const auto warmth = [](const Photo& photo) {
        const auto colour = meanColour(photo);
        return colour[0] - colour[2];
    };
    const double before = warmth(decodeFile(storm));
    EXPECT_GT(warmth(adjusted(storm, {"--temperature", "16000"})), before + 2);
    EXPECT_LT(warmth(adjusted(storm, {"--temperature", "7000"})), before - 2);
}

TEST_F(ProgramPictures, UsualBandsReachTheirColours) {
    // How far the ladybird's red stands out from the leaves.
    const auto redness = [](const Photo& photo) {
        double sum = 0;
        for (std::uint32_t y = 0; y < photo.height(); ++y) {
            for (std::uint32_t x = 0; x < photo.width(); ++x) {
                const unsigned char* pixel = photo.pixel(x, y);
                sum += std::max(0, pixel[2] - std::max(pixel[0], pixel[1]));
            }
        }
        return sum;
    };
    const std::string ladybird = photograph("nature/LadyBird.jpg");
    const Photo before = decodeFile(ladybird);
    EXPECT_LT(redness(adjusted(ladybird, {"--red-saturation", "-100"})), redness(before) * 0.8);
    EXPECT_GT(redness(adjusted(ladybird, {"--aqua-saturation", "-100"})), redness(before) * 0.95);
}

TEST_F(ProgramPictures, JpegGetsCloserWithQuality) {
    const auto size = [&](const std::string& quality) {
        const auto output = folder / "q.jpg";
        EXPECT_EQ(runProgram({dune, "-o", output.string(), "--quality", quality}).code, 0);
        return std::filesystem::file_size(output);
    };
    EXPECT_LT(size("30"), size("95"));
}

TEST_F(ProgramPictures, GreyStaysGrey) {
    const auto input = folder / "grey.png";
    writeFile(input, pngCodec().encode(noise(50, 40, ChannelLayout::grey), {}));
    const Photo result = adjusted(input.string(), {"--exposure", "20"});
    EXPECT_EQ(result.layout(), ChannelLayout::grey);
    EXPECT_GT(meanBrightness(result), meanBrightness(decodeFile(input)));
}

TEST_F(ProgramPictures, AlphaIsKeptOrItsLossToldOf) {
    const auto input = folder / "alpha.png";
    const Photo photo = noise(50, 40, ChannelLayout::bgra, true);
    writeFile(input, pngCodec().encode(photo, {}));
    expectSamePixels(adjusted(input.string()), photo);
    EXPECT_EQ(outcome.errors, "");

    const Outcome jpeg = runProgram({input.string(), "-o", (folder / "a.jpg").string()});
    EXPECT_EQ(jpeg.code, 0);
    EXPECT_NE(jpeg.errors.find("transparency is dropped"), std::string::npos);
}

TEST_F(ProgramPictures, DeepPicturesAreConvertedWithANotice) {
    const auto input = folder / "deep.png";
    writeDeepPng(input, {0, 0x8000, 0xFFFF});
    const Photo photo = adjusted(input.string());
    EXPECT_NE(outcome.errors.find("16 bits per channel converted to 8"), std::string::npos);
    EXPECT_EQ(photo.pixel(0, 0)[1], 128);
}

TEST_F(ProgramPictures, ComparisonShowsBeforeAndAfter) {
    const Photo after = adjusted(dune, {"--exposure", "20", "--compare"});
    const Photo before = decodeFile(dune);
    const Photo both = decodeFile(folder / "adjusted-compare.png");
    ASSERT_EQ(both.width(), 2 * before.width() + comparisonGap);
    ASSERT_EQ(both.height(), before.height());
    expectSamePixels(both, sideBySide(before, after));
}

TEST_F(ProgramPictures, SheetShowsTheRangeOfASetting) {
    expectSamePixels(adjusted(dune, {"--sheet", "clarity"}), decodeFile(dune));
    const Photo sheet = decodeFile(folder / "adjusted-sheet-clarity.png");
    // 1680 x 1050 in blocks of 4 x 4 pixels.
    EXPECT_EQ(sheet.width(), 3 * (420 + 2 * sheetMargin));
    EXPECT_EQ(sheet.height(), 3 * (263 + labelHeight + 3 * sheetMargin));
}

TEST_F(ProgramPictures, ThreadsDoNotChangeAnything) {
    const std::vector<std::string> options = {"--exposure", "20", "--clarity", "30"};
    const auto with = [&](const std::string& threads) {
        auto all = options;
        all.insert(all.end(), {"--threads", threads});
        return adjusted(dune, all);
    };
    expectSamePixels(with("1"), with("4"));
}

}  // namespace
