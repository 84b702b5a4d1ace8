#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "codecs/Codec.h"
#include "codecs/SampleDepth.h"
#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/OddPictures.h"
#include "support/Pictures.h"
#include "support/TemporaryFolder.h"
#include "text/Failure.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

Photo roundTrip(const Codec& codec, const Photo& photo, const EncodeOptions& options = {}) {
    return codec.decode(codec.encode(photo, options));
}

TEST(Codecs, KeepEveryPixelWhereTheFormatCan) {
    // Odd widths, so that the padding of rows cannot pass for pixels.
    for (const Codec* codec : {&pngCodec(), &tiffCodec()}) {
        SCOPED_TRACE(codec->name());
        for (const bool hasAlpha : {false, true}) {
            const Photo photo = noise(37, 21, ChannelLayout::bgra, hasAlpha);
            expectSamePixels(roundTrip(*codec, photo), photo);
        }
        const Photo grey = noise(37, 21, ChannelLayout::grey);
        expectSamePixels(roundTrip(*codec, grey), grey);
    }
}

TEST(Codecs, KeepEveryPixelInLosslessWebP) {
    for (const bool hasAlpha : {false, true}) {
        const Photo photo = noise(37, 21, ChannelLayout::bgra, hasAlpha);
        expectSamePixels(roundTrip(webpCodec(), photo, {.lossless = true}), photo);
    }
}

TEST(Codecs, WriteGreyAsColourInWebP) {
    const Photo grey = noise(5, 4, ChannelLayout::grey);
    const Photo colour = roundTrip(webpCodec(), grey, {.lossless = true});
    ASSERT_EQ(colour.layout(), ChannelLayout::bgra);
    for (int channel = 0; channel < 3; ++channel) {
        EXPECT_EQ(colour.pixel(3, 2)[channel], *grey.pixel(3, 2));
    }
}

TEST(Codecs, KeepGreyAndSizeInJpeg) {
    const Photo grey = roundTrip(jpegCodec(), noise(37, 21, ChannelLayout::grey));
    EXPECT_EQ(grey.layout(), ChannelLayout::grey);
    EXPECT_EQ(grey.width(), 37u);
    EXPECT_EQ(grey.height(), 21u);
}

TEST(Codecs, SpendBytesOnQuality) {
    const Photo photo = noise(64, 64, ChannelLayout::bgra);
    for (const Codec* codec : {&jpegCodec(), &webpCodec()}) {
        EXPECT_GT(codec->encode(photo, {.quality = 95}).size(),
                  codec->encode(photo, {.quality = 20}).size())
            << codec->name();
    }
}

TEST(Codecs, KnowTheirFilesByContent) {
    const Photo photo = noise(8, 8, ChannelLayout::bgra);
    for (const Codec* codec : codecs()) {
        EXPECT_EQ(codecForContent(codec->encode(photo, {})), codec) << codec->name();
    }
    EXPECT_EQ(codecForContent({}), nullptr);
    const std::string_view bitmap = "BM12345678901234";
    EXPECT_EQ(codecForContent(
                  std::span(reinterpret_cast<const unsigned char*>(bitmap.data()), bitmap.size())),
              nullptr);
}

TEST(Codecs, KnowTheirExtensions) {
    EXPECT_EQ(codecForExtension("jpeg"), &jpegCodec());
    EXPECT_EQ(codecForExtension("png"), &pngCodec());
    EXPECT_EQ(codecForExtension("tif"), &tiffCodec());
    EXPECT_EQ(codecForExtension("webp"), &webpCodec());
    EXPECT_EQ(codecForExtension("bmp"), nullptr);
    EXPECT_EQ(codecForExtension(""), nullptr);
}

// A picture that ends early must never pass as a good one with a grey rest.
TEST(Codecs, RefuseTruncatedFiles) {
    const Photo photo = noise(64, 64, ChannelLayout::bgra);
    for (const Codec* codec : codecs()) {
        const Bytes whole = codec->encode(photo, {});
        for (const std::size_t size :
             {whole.size() - whole.size() / 4, whole.size() / 2, std::size_t{40}, signatureSize}) {
            EXPECT_THROW(codec->decode(std::span(whole).first(size)), Failure)
                << codec->name() << ", " << size << " of " << whole.size() << " bytes";
        }
    }
}

TEST(Codecs, SurviveDamagedFiles) {
    const Photo photo = noise(32, 32, ChannelLayout::bgra, true);
    for (const Codec* codec : codecs()) {
        const Bytes whole = codec->encode(photo, {});
        int refused = 0;
        for (std::size_t index = 0; index < whole.size(); index += 7) {
            Bytes damaged = whole;
            damaged[index] ^= 0x55;
            try {
                const Photo decoded = codec->decode(damaged);
                EXPECT_GT(decoded.width(), 0u);
            } catch (const Failure&) {
                ++refused;
            }
        }
        EXPECT_GT(refused, 0) << codec->name();
    }
}

TEST(Codecs, RefusePicturesTooLargeForTheFormat) {
    const Photo wide(70'000, 1, ChannelLayout::grey);
    EXPECT_THROW(jpegCodec().encode(wide, {}), Failure);
    EXPECT_THROW(webpCodec().encode(wide, {}), Failure);
    expectSamePixels(roundTrip(pngCodec(), wide), wide);
}

TEST(SampleDepth, TakesTheNearestLevel) {
    for (std::uint32_t deep = 0; deep < 65'536; ++deep) {
        ASSERT_EQ(eightBits(static_cast<std::uint16_t>(deep)), std::lround(deep / 257.0)) << deep;
    }
}

TEST(SampleDepth, IsTheSameForPngAndTiff) {
    const TemporaryFolder folder;
    const std::vector<std::uint16_t> samples = {0,      128,    129,    0x1234, 0x8000, 0xFFFF,
                                                0xFF7F, 0xFF80, 0x0181, 257,    385,    386};
    writeDeepPng(folder / "deep.png", samples);
    writeDeepTiff(folder / "deep.tif", samples);
    for (const char* name : {"deep.png", "deep.tif"}) {
        const Photo photo = decodeFile(folder / name);
        ASSERT_EQ(photo.width(), 4u);
        EXPECT_EQ(photo.notices, std::vector<std::string>{"16 bits per channel converted to 8"});
        for (std::uint32_t x = 0; x < 4; ++x) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                EXPECT_EQ(photo.pixel(x, 0)[2 - channel], eightBits(samples[3 * x + channel]))
                    << name << ", sample " << 3 * x + channel;
            }
        }
    }
}

TEST(OddPictures, PaletteBecomesColourAndAlpha) {
    const TemporaryFolder folder;
    writePalettePng(folder / "palette.png");
    const Photo photo = decodeFile(folder / "palette.png");
    ASSERT_TRUE(photo.hasAlpha);
    const std::vector<int> pixels(photo.row(0), photo.row(0) + 8);
    EXPECT_EQ(pixels, (std::vector<int>{0, 0, 255, 255, 255, 0, 0, 128}));
}

TEST(OddPictures, GreyWithAlphaBecomesColourWithAlpha) {
    const TemporaryFolder folder;
    writeGreyAlphaPng(folder / "grey.png", {10, 20, 200, 255});
    const Photo photo = decodeFile(folder / "grey.png");
    ASSERT_EQ(photo.layout(), ChannelLayout::bgra);
    ASSERT_TRUE(photo.hasAlpha);
    const std::vector<int> pixels(photo.row(0), photo.row(0) + 8);
    EXPECT_EQ(pixels, (std::vector<int>{10, 10, 10, 20, 200, 200, 200, 255}));
}

TEST(OddPictures, MissingInkIsLight) {
    struct Case {
        std::vector<std::uint8_t> inks;
        std::array<int, 3> colour;
    };
    const std::vector<Case> cases = {
        {{255, 255, 255, 255}, {255, 255, 255}}, {{0, 255, 255, 255}, {0, 255, 255}},
        {{255, 255, 0, 255}, {255, 255, 0}},     {{255, 255, 255, 0}, {0, 0, 0}},
        {{200, 100, 50, 128}, {100, 50, 25}},
    };
    const TemporaryFolder folder;
    for (const Case& each : cases) {
        writeCmykJpeg(folder / "cmyk.jpg", each.inks);
        const Photo photo = decodeFile(folder / "cmyk.jpg");
        EXPECT_EQ(photo.notices.size(), 1u);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            // Two levels for JPEG's own rounding of a flat picture.
            EXPECT_NEAR(photo.pixel(7, 7)[2 - channel], each.colour[channel], 2);
        }
    }
}

TEST(OddPictures, MultipliedAlphaIsUndone) {
    const TemporaryFolder folder;
    for (const bool tiled : {false, true}) {
        writeMultipliedTiff(folder / "alpha.tif", {50, 25, 100, 100}, tiled);
        const Photo photo = decodeFile(folder / "alpha.tif");
        ASSERT_TRUE(photo.hasAlpha);
        const std::vector<int> pixel(photo.pixel(17, 9), photo.pixel(17, 9) + 4);
        EXPECT_EQ(pixel, (std::vector<int>{255, 64, 128, 100})) << tiled;
    }
}

TEST(OddPictures, FurtherPagesAreLeftOutWithANotice) {
    const TemporaryFolder folder;
    writePagedTiff(folder / "pages.tif", {false, true});
    EXPECT_TRUE(decodeFile(folder / "pages.tif").notices.empty());
    writePagedTiff(folder / "pages.tif", {false, true, false});
    EXPECT_EQ(decodeFile(folder / "pages.tif").notices,
              std::vector<std::string>{"only the first page is used"});
}

// Most raw files begin with a preview, which must not be taken for the picture.
TEST(OddPictures, PreviewsOfRawFilesAreRefused) {
    const TemporaryFolder folder;
    writePagedTiff(folder / "raw.tif", {true, false});
    EXPECT_THROW(decodeFile(folder / "raw.tif"), Failure);
}

TEST(OddPictures, AbsurdSizesAreRefusedByName) {
    const TemporaryFolder folder;
    writeAbsurdJpeg(folder / "absurd.jpg");
    try {
        decodeFile(folder / "absurd.jpg");
        FAIL() << "was decoded";
    } catch (const Failure& failure) {
        EXPECT_NE(std::string(failure.what()).find("65278 x 65278"), std::string::npos);
    }
}

}  // namespace
