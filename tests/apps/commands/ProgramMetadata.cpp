#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

class ProgramMetadata : public testing::Test {
protected:
    ProgramMetadata() {
        std::filesystem::copy_file(photograph("nature/Dune.jpg"), input);
        annotate(input, 6);
    }

    std::unique_ptr<Exiv2::Image> adjusted(const std::filesystem::path& from,
                                           const std::string& name) {
        const Outcome outcome = runProgram({from.string(), "-o", (folder / name).string()});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.errors, "") << name;
        std::unique_ptr<Exiv2::Image> image(
            Exiv2::ImageFactory::open((folder / name).string()).release());
        image->readMetadata();
        return image;
    }

    void expectKept(Exiv2::Image& image) {
        Exiv2::ExifData& exif = image.exifData();
        EXPECT_EQ(exif["Exif.Image.Make"].toString(), "Maker");
        EXPECT_EQ(exif["Exif.Image.Orientation"].toLong(), 1);
        EXPECT_EQ(exif["Exif.Photo.PixelXDimension"].toLong(), 1050);
        EXPECT_EQ(exif["Exif.Photo.PixelYDimension"].toLong(), 1680);
        EXPECT_EQ(Exiv2::ExifThumb(exif).copy().size_, 0) << "the thumbnail shows the old picture";
        EXPECT_NE(image.xmpData()["Xmp.dc.title"].toString().find("Title"), std::string::npos);
        ASSERT_TRUE(image.iccProfileDefined());
        const Exiv2::DataBuf& profile = *image.iccProfile();
        EXPECT_EQ(Bytes(profile.pData_, profile.pData_ + profile.size_), testProfile());
    }

    TemporaryFolder folder;
    const std::filesystem::path input = folder / "input.jpg";
};

TEST_F(ProgramMetadata, GoesFromJpegIntoEveryFormatAndBack) {
    for (const std::string extension : {"jpg", "png", "tif", "webp"}) {
        SCOPED_TRACE(extension);
        const auto there = adjusted(input, "there." + extension);
        expectKept(*there);
        const auto back = adjusted(folder / ("there." + extension), extension + "-back.jpg");
        expectKept(*back);
    }
}

TEST_F(ProgramMetadata, KeepsKeywordsWhereTheFormatCan) {
    for (const std::string extension : {"jpg", "png", "tif"}) {
        const auto image = adjusted(input, "kept." + extension);
        EXPECT_EQ(image->iptcData()["Iptc.Application2.Keywords"].toString(), "keyword")
            << extension;
    }
}

TEST_F(ProgramMetadata, TurnsPicturesUpright) {
    adjusted(input, "upright.png");
    const Photo stored = decodeFile(input);
    const Photo upright = decodeFile(folder / "upright.png");
    ASSERT_EQ(upright.width(), stored.height());
    ASSERT_EQ(upright.height(), stored.width());
    // Orientation 6: the stored left edge is the top, the stored top edge is on the right.
    for (int channel = 0; channel < 3; ++channel) {
        EXPECT_EQ(upright.pixel(upright.width() - 1, 0)[channel], stored.pixel(0, 0)[channel]);
        EXPECT_EQ(upright.pixel(0, 0)[channel], stored.pixel(0, stored.height() - 1)[channel]);
        EXPECT_EQ(upright.pixel(upright.width() - 1, upright.height() - 1)[channel],
                  stored.pixel(stored.width() - 1, 0)[channel]);
    }
}

TEST_F(ProgramMetadata, ATurnedTiffIsTurnedOnce) {
    const auto tiff = folder / "turned.tif";
    adjusted(input, "turned.tif");
    annotate(tiff, 3);
    const Photo stored = decodeFile(tiff);
    adjusted(tiff, "upright.tif");
    const Photo upright = decodeFile(folder / "upright.tif");
    ASSERT_EQ(upright.width(), stored.width());
    for (int channel = 0; channel < 3; ++channel) {
        EXPECT_EQ(upright.pixel(0, 0)[channel],
                  stored.pixel(stored.width() - 1, stored.height() - 1)[channel]);
    }
}

TEST_F(ProgramMetadata, DropsAProfileThatNoLongerFits) {
    const auto grey = folder / "grey.jpg";
    writeFile(grey, jpegCodec().encode(noise(20, 20, ChannelLayout::grey), {}));
    annotate(grey, 1);
    const auto output = folder / "out.png";
    const Outcome outcome = runProgram({grey.string(), "-o", output.string()});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.errors.find("profile does not fit"), std::string::npos);
    EXPECT_EQ(decodeFile(output).layout(), ChannelLayout::grey);
}

TEST_F(ProgramMetadata, ComparisonAndSheetKeepTheProfileOnly) {
    const Outcome outcome = runProgram(
        {input.string(), "-o", (folder / "a.jpg").string(), "--compare", "--sheet", "exposure"});
    ASSERT_EQ(outcome.code, 0) << outcome.errors;
    for (const char* name : {"a-compare.jpg", "a-sheet-exposure.jpg"}) {
        const std::unique_ptr<Exiv2::Image> image(
            Exiv2::ImageFactory::open((folder / name).string()).release());
        image->readMetadata();
        EXPECT_TRUE(image->iccProfileDefined()) << name;
        EXPECT_TRUE(image->exifData().empty()) << name;
    }
}

// Whoever passes the program on has to know under which terms.
TEST(ProgramLicence, IsThatOfWhatIsLinked) {
    const Bytes program = readFile(programPath());
    const std::string_view bytes(reinterpret_cast<const char*>(program.data()), program.size());
    // The shared library's name, or those of its types.
    const bool linked = bytes.find("libexiv2.so") != std::string_view::npos ||
                        bytes.find("N5Exiv2") != std::string_view::npos;
    const std::string told = runProgram({"--version"}).output;
    EXPECT_EQ(told.find("\nLicence: GPL-2.0-or-later as a whole") != std::string::npos, linked)
        << told;
    EXPECT_EQ(told.ends_with("\nLicence: MIT\n"), !linked) << told;
}

}  // namespace
