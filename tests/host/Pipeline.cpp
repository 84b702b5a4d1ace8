#include "host/Pipeline.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "support/HostPicture.h"
#include "support/StageSettings.h"

namespace {

using keladjust::test::everyFormat;
using keladjust::test::HostPicture;
using keladjust::test::identity;
using keladjust::test::PixelFormat;

// The stages one by one, as a host would call them: what the pipeline must come to, in order and in
// every byte.
CxImage* callOneByOne(CxImage* image, const _AdjustParam& p) {
    image = temperatureAdjustment(image, p.temperature);
    image = tintAdjustment(image, p.tint);
    image = exposureAdjustment(image, p.exposure);
    image = brightnessAdjustment(image, p.brightness);
    image = contrastAdjustment(image, p.contrast);
    image = vibranceAdjustment(image, p.vibrance);
    image = saturationAdjustment(image, p.saturation);
    image = hdrHighlight(image, p.highlights);
    image = hdrShadow(image, p.shadows);
    image = hdrWhiteLevel(image, p.whites);
    image = hdrBlackLevel(image, p.blacks);
    for (const _AdjustColourRange& r : p.range) {
        if (r.hue != 0 || r.saturation != 0 || r.brightness != 0) {
            doHSLAdjustFilter(image, r.minDegree, r.maxDegree, r.hue, r.saturation, r.brightness);
        }
    }
    image = vignetteAdjustFilter(image, p.vignetteAmount, p.vignetteFeather, p.vignetteHighlights,
                                 p.vignetteSize, p.vignetteRoundness, p.vignetteExposure);
    image = clarity(image, p.clarity);
    image = sharpen(image, p.sharpen);
    image = distortFilter(image, p.distortion);
    image = fringingFilter(image, p.fringing);
    image = dehaze(image, p.dehaze);
    image = diffuse(image, p.diffuse);
    image = deNoiseRGB(image, p.colourNoiseReduction);
    return deNoiseLumiance(image, p.luminanceNoiseReduction);
}

_AdjustParam everySetting() {
    _AdjustParam p{};
    p.temperature = 9000;
    p.tint = 30;
    p.exposure = 15;
    p.brightness = 10;
    p.contrast = 20;
    p.vibrance = 40;
    p.saturation = 20;
    p.highlights = -40;
    p.shadows = 35;
    p.whites = 20;
    p.blacks = -15;
    p.clarity = 12;
    p.sharpen = 40;
    for (int i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        const auto step = static_cast<float>(i);
        p.range[i] = {step * 45, step * 45 + 60, 10 - step, 20 + step, -30 + step};
    }
    p.range[KELADJUST_RANGE_RED] = {330, 30, 15, 10, 5};
    p.vignetteAmount = -40;
    p.vignetteSize = 60;
    p.vignetteRoundness = 20;
    p.vignetteFeather = 50;
    p.vignetteExposure = 10;
    p.vignetteHighlights = 30;
    p.distortion = 10;
    p.fringing = -20;
    p.dehaze = 30;
    p.diffuse = 20;
    p.colourNoiseReduction = 20;
    p.luminanceNoiseReduction = 5;
    return p;
}

void expectAsOneByOne(const _AdjustParam& settings, unsigned width, unsigned height,
                      PixelFormat format) {
    HostPicture picture(width, height, format.bpp, format.format);
    picture.fillRandom(width * 31 + height);
    HostPicture expected(picture);
    callOneByOne(expected.image(), settings);
    EXPECT_EQ(doAdjust(picture.image(), settings), picture.image());
    EXPECT_EQ(picture.bytes(), expected.bytes())
        << format.bpp << " bits, format " << format.format << ", " << width << " x " << height;
    EXPECT_TRUE(picture.guardsIntact());
    EXPECT_TRUE(expected.guardsIntact());
}

TEST(Pipeline, EqualsItsStagesOneByOneInEveryFormat) {
    for (const PixelFormat format : everyFormat) {
        for (const auto& [width, height] :
             {std::pair{1u, 1u}, std::pair{2u, 3u}, std::pair{5u, 7u}, std::pair{1u, 40u},
              std::pair{40u, 1u}, std::pair{64u, 48u}, std::pair{61u, 47u}}) {
            expectAsOneByOne(everySetting(), width, height, format);
        }
    }
}

TEST(Pipeline, EqualsItsPerPixelStagesOnWideRows) {
    _AdjustParam settings = everySetting();
    settings.clarity = settings.sharpen = settings.dehaze = settings.diffuse = 0;
    settings.distortion = settings.fringing = 0;
    settings.colourNoiseReduction = settings.luminanceNoiseReduction = 0;
    for (const PixelFormat format : everyFormat) {
        expectAsOneByOne(settings, 4099, 3, format);
        expectAsOneByOne(settings, 4100, 20, format);
    }
}

TEST(Pipeline, EqualsItsStagesOneByOneForOddPairsOfFormatAndDepth) {
    for (const PixelFormat format :
         {PixelFormat{24, IMAGE_FORMAT_RGBA}, PixelFormat{32, IMAGE_FORMAT_GRAY},
          PixelFormat{12, IMAGE_FORMAT_RGB}, PixelFormat{48, IMAGE_FORMAT_RGB},
          PixelFormat{1, IMAGE_FORMAT_GRAY}, PixelFormat{32, IMAGE_FORMAT_UNKNOWN}}) {
        expectAsOneByOne(everySetting(), 21, 13, format);
        expectAsOneByOne(everySetting(), 32, 24, format);
    }
}

// A record of slots that a host may have filled with anything at all.
_AdjustParam randomRecord(std::mt19937& generator) {
    constexpr float wild[] = {std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(),
                              1e30f,
                              -1e30f,
                              1e-30f,
                              -0.0f};
    const auto pick = [&generator](std::size_t count) { return generator() % count; };
    const auto slot = [&](float range) {
        const std::size_t kind = pick(10);
        if (kind < 4) return 0.0f;
        if (kind < 6) return wild[pick(std::size(wild))];
        return (static_cast<float>(pick(20001)) / 10000.0f - 1.0f) * range;
    };
    _AdjustParam p = identity;
    constexpr std::int32_t temperatures[] = {0, 9000, 11499, 11501, 16000, INT32_MAX, INT32_MIN};
    if (pick(2) == 0) p.temperature = temperatures[pick(std::size(temperatures))];
    for (float* value : {&p.tint,
                         &p.exposure,
                         &p.brightness,
                         &p.contrast,
                         &p.vibrance,
                         &p.saturation,
                         &p.highlights,
                         &p.shadows,
                         &p.whites,
                         &p.blacks,
                         &p.clarity,
                         &p.sharpen,
                         &p.vignetteAmount,
                         &p.vignetteSize,
                         &p.vignetteRoundness,
                         &p.vignetteFeather,
                         &p.vignetteExposure,
                         &p.vignetteHighlights,
                         &p.distortion,
                         &p.fringing,
                         &p.dehaze,
                         &p.diffuse,
                         &p.colourNoiseReduction,
                         &p.luminanceNoiseReduction}) {
        *value = slot(120.0f);
    }
    for (_AdjustColourRange& range : p.range) {
        if (pick(3) != 0) continue;
        range = {slot(360.0f), slot(360.0f), slot(180.0f), slot(100.0f), slot(100.0f)};
    }
    return p;
}

TEST(Pipeline, TakesAnyRecordOnAnyPicture) {
    std::mt19937 generator(20);
    constexpr unsigned depths[] = {1, 8, 12, 15, 16, 24, 32, 48, 64};
    for (int i = 0; i < 400; ++i) {
        const auto width = static_cast<unsigned>(1 + generator() % 70);
        const auto height = static_cast<unsigned>(1 + generator() % 50);
        const unsigned bpp = depths[generator() % std::size(depths)];
        const auto format = static_cast<_ImagePixelFormat>(generator() % 6);
        expectAsOneByOne(randomRecord(generator), width, height, {bpp, format});
        if (HasFailure()) FAIL() << "record " << i;
    }
}

TEST(Pipeline, LeavesPicturesAloneIfNoSettingDoesAnythingByItself) {
    _AdjustParam record = identity;
    EXPECT_TRUE(keladjust::leavesPicturesAlone(record));
    record.vignetteRoundness = 30;
    EXPECT_TRUE(keladjust::leavesPicturesAlone(record));
    record.vignetteAmount = -30;
    EXPECT_FALSE(keladjust::leavesPicturesAlone(record));
}

// What rowsStandAlone() says of a picture.
bool standAlone(const _AdjustParam& record, PixelFormat format = {32, IMAGE_FORMAT_BGRA}) {
    HostPicture picture(40, 3, format.bpp, format.format);
    return keladjust::rowsStandAlone(*picture.image(), record);
}

TEST(Pipeline, RowsOfTonesStandAlone) {
    _AdjustParam record = identity;
    EXPECT_TRUE(standAlone(record));
    record.exposure = 15;
    record.saturation = 20;
    EXPECT_TRUE(standAlone(record));
}

TEST(Pipeline, RowsDoNotStandAloneWhereAStageSeesItsNeighbours) {
    _AdjustParam record = identity;
    record.exposure = 15;
    record.clarity = 10;
    EXPECT_FALSE(standAlone(record));
}

TEST(Pipeline, RowsDoNotStandAloneWhereAStageLooksAtAPixelsPlace) {
    _AdjustParam record = identity;
    record.vignetteAmount = -30;
    EXPECT_FALSE(standAlone(record));
}

TEST(Pipeline, RowsDoNotStandAloneWhereColoursAreRemembered) {
    EXPECT_FALSE(standAlone(everySetting()));
}

TEST(Pipeline, RowsDoNotStandAloneWhereAStageGoesAlongTheirPadding) {
    _AdjustParam record = identity;
    record.brightness = 15;
    const PixelFormat rgb{24, IMAGE_FORMAT_RGB};
    HostPicture padded(41, 3, rgb.bpp, rgb.format);
    EXPECT_FALSE(keladjust::rowsStandAlone(*padded.image(), record));
    EXPECT_TRUE(standAlone(record, rgb));
}

TEST(Pipeline, AtIdentityReturnsThePictureAsItIs) {
    for (const PixelFormat format : everyFormat) {
        HostPicture picture(61, 7, format.bpp, format.format);
        const auto before = picture.fillRandom(4).bytes();
        EXPECT_EQ(doAdjust(picture.image(), identity), picture.image());
        EXPECT_EQ(picture.bytes(), before);
    }
}

TEST(Pipeline, DegreeBoundsAloneRunNoColourRange) {
    _AdjustParam settings = identity;
    settings.range[KELADJUST_RANGE_RED].maxDegree = 200;
    settings.range[KELADJUST_RANGE_AQUA].minDegree = 20;
    HostPicture picture(61, 7, 24, IMAGE_FORMAT_RGB);
    const auto before = picture.fillRandom(4).bytes();
    doAdjust(picture.image(), settings);
    EXPECT_EQ(picture.bytes(), before);
}

TEST(Pipeline, ANaNInAColourRangeRunsIt) {
    // Hue NaN at weight 0 still makes the round trip through HSL, which shows.
    _AdjustParam settings = identity;
    settings.range[KELADJUST_RANGE_GREEN].saturation = std::numeric_limits<float>::quiet_NaN();
    HostPicture picture(61, 7, 24, IMAGE_FORMAT_RGB);
    const auto before = picture.fillRandom(4).bytes();
    HostPicture expected(picture);
    doAdjust(picture.image(), settings);
    callOneByOne(expected.image(), settings);
    EXPECT_NE(picture.bytes(), before);
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

TEST(Pipeline, RunsTonesBeforeColourRanges) {
    // Exposure drives this orange to a yellowish tone whose hue lies in the band; asked the other
    // way round the band would not meet it.
    _AdjustParam settings = identity;
    settings.exposure = 100;
    settings.range[KELADJUST_RANGE_ORANGE] = {40, 80, 0, -100, 0};
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {0, 90, 200, 0});  // hue 27
    doAdjust(picture.image(), settings);
    // Exposed: red 255, green 206, blue 0: hue 48.5, weight 0.42 of the way to grey 127.
    EXPECT_GT(picture.pixel(0, 0).blue, 40);
}

TEST(Pipeline, LeavesTheHostsRecordAlone) {
    const _AdjustParam settings = everySetting();
    _AdjustParam copy = settings;
    HostPicture picture(5, 5, 32, IMAGE_FORMAT_BGRA);
    doAdjust(picture.image(), copy);
    EXPECT_EQ(copy.temperature, settings.temperature);
    EXPECT_EQ(copy.range[3].hue, settings.range[3].hue);
}

}  // namespace
