// What all per-pixel stages share: formats, depths, padding, threads, bad pictures, tables.

#include <gtest/gtest.h>

#include <cfenv>
#include <functional>
#include <string>
#include <vector>

#include <xmmintrin.h>

#include "support/HostPicture.h"
#include "support/InstructionSets.h"

namespace {

using keladjust::test::everyFormat;
using keladjust::test::HostPicture;
using keladjust::test::PixelFormat;

struct NamedStage {
    std::string name;
    std::function<CxImage*(CxImage*)> run;
};

const std::vector<NamedStage>& perPixelStages() {
    static const std::vector<NamedStage> stages = {
        {"temperature", [](CxImage* i) { return temperatureAdjustment(i, 8000); }},
        {"tint", [](CxImage* i) { return tintAdjustment(i, 60.0f); }},
        {"exposure", [](CxImage* i) { return exposureAdjustment(i, 20.0f); }},
        {"contrast", [](CxImage* i) { return contrastAdjustment(i, 40.0f); }},
        {"vibrance", [](CxImage* i) { return vibranceAdjustment(i, 70.0f); }},
        {"saturation", [](CxImage* i) { return saturationAdjustment(i, 30.0f); }},
        {"highlights", [](CxImage* i) { return hdrHighlight(i, -50.0f); }},
        {"shadows", [](CxImage* i) { return hdrShadow(i, 50.0f); }},
        {"whites", [](CxImage* i) { return hdrWhiteLevel(i, 30.0f); }},
        {"blacks", [](CxImage* i) { return hdrBlackLevel(i, -30.0f); }},
        {"colour range", [](CxImage* i) { return doHSLAdjustFilter(i, 0, 120, 20, 30, 40); }},
    };
    return stages;
}

// The same pixels as a 32-bit picture gives them, one by one through GetPixelColor, SetPixelColor:
// a stage works on what these two read and write, whatever the format.
void expectAsThroughPixelAccess(const NamedStage& stage, PixelFormat format, unsigned width,
                                unsigned height) {
    HostPicture picture(width, height, format.bpp, format.format);
    picture.fillRandom(17);
    HostPicture expected(picture);
    HostPicture asBgra(width, height, 32, IMAGE_FORMAT_BGRA);
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) asBgra.setPixel(x, y, expected.pixel(x, y));
    }
    stage.run(asBgra.image());
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) expected.setPixel(x, y, asBgra.pixel(x, y));
    }

    EXPECT_EQ(stage.run(picture.image()), picture.image());
    EXPECT_EQ(picture.bytes(), expected.bytes())
        << stage.name << " on " << format.bpp << " bits, format " << format.format << ", " << width
        << " x " << height;
    EXPECT_TRUE(picture.guardsIntact());
}

TEST(PerPixelStages, TreatEveryFormatAsPixelAccessDoes) {
    for (const NamedStage& stage : perPixelStages()) {
        for (const PixelFormat format : everyFormat) {
            for (const auto& [width, height] :
                 {std::pair{1u, 1u}, std::pair{2u, 3u}, std::pair{5u, 7u}, std::pair{2100u, 2u}}) {
                expectAsThroughPixelAccess(stage, format, width, height);
            }
        }
    }
}

TEST(PerPixelStages, LeavePairsOfFormatAndDepthWithoutAMeaningAlone) {
    constexpr PixelFormat odd[] = {
        {24, IMAGE_FORMAT_RGBA}, {32, IMAGE_FORMAT_RGB},     {32, IMAGE_FORMAT_GRAY},
        {12, IMAGE_FORMAT_RGB},  {32, IMAGE_FORMAT_UNKNOWN}, {48, IMAGE_FORMAT_RGB},
        {1, IMAGE_FORMAT_GRAY},  {16, IMAGE_FORMAT_GRAY},    {16, IMAGE_FORMAT_BGRA},
    };
    for (const NamedStage& stage : perPixelStages()) {
        for (const PixelFormat format : odd) {
            HostPicture picture(9, 5, format.bpp, format.format);
            const auto before = picture.fillRandom(2).bytes();
            EXPECT_EQ(stage.run(picture.image()), picture.image());
            EXPECT_EQ(picture.bytes(), before) << stage.name << " on " << format.bpp;
        }
    }
}

TEST(PerPixelStages, ReturnPicturesWithoutPixels) {
    CxImage empty;
    unsigned char* noBits = nullptr;
    CxImage withoutBits(&noBits, 10, 10, 32, IMAGE_FORMAT_BGRA);
    // 2^30 columns of 32 bits wrap to rows of no bytes: the buffer holds none of these pixels.
    unsigned char byte = 7;
    unsigned char* bits = &byte;
    CxImage wrapping(&bits, 1u << 30, 1, 32, IMAGE_FORMAT_BGRA);
    CxImage noHeight(&bits, 5, 0, 32, IMAGE_FORMAT_BGRA);
    std::vector<NamedStage> stages = perPixelStages();
    stages.push_back({"brightness", [](CxImage* i) { return brightnessAdjustment(i, 10.0f); }});
    stages.push_back({"hue", [](CxImage* i) { return hueAdjustment(i, 10.0f); }});
    for (const NamedStage& stage : stages) {
        EXPECT_EQ(stage.run(nullptr), nullptr) << stage.name;
        for (CxImage* image : {&empty, &withoutBits, &wrapping, &noHeight}) {
            EXPECT_EQ(stage.run(image), image) << stage.name;
        }
        EXPECT_EQ(byte, 7) << stage.name;
    }
}

TEST(PerPixelStages, DoNotDependOnTheNumberOfThreads) {
    HostPicture picture(700, 300, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(23);
    std::vector<NamedStage> stages = perPixelStages();
    stages.push_back({"brightness", [](CxImage* i) { return brightnessAdjustment(i, 10.0f); }});
    stages.push_back({"hue", [](CxImage* i) { return hueAdjustment(i, 10.0f); }});
    for (const NamedStage& stage : stages) {
        setMaxThreads(1);
        HostPicture alone(picture);
        stage.run(alone.image());
        for (const int threads : {2, 3, 16, 0, -5}) {
            setMaxThreads(threads);
            HostPicture shared(picture);
            stage.run(shared.image());
            EXPECT_EQ(shared.bytes(), alone.bytes()) << stage.name << ", " << threads;
        }
    }
    setMaxThreads(0);
}

TEST(PerPixelStages, DoNotDependOnTheInstructionSet) {
    // Every layout: loading and storing have vectors of their own. A row is longer than a span and
    // no multiple of any vector.
    for (const PixelFormat format : everyFormat) {
        HostPicture picture(2511, 9, format.bpp, format.format);
        picture.fillRandom(31);
        for (const NamedStage& stage : perPixelStages()) {
            HostPicture usual(picture);
            stage.run(usual.image());
            keladjust::test::forEachInstructionSet([&](const std::string& name) {
                HostPicture each(picture);
                stage.run(each.image());
                EXPECT_EQ(each.bytes(), usual.bytes()) << stage.name << " on " << name;
            });
        }
    }
}

TEST(PerPixelStages, ComputeInTheDefaultEnvironmentAndRestoreTheCallers) {
    HostPicture picture(300, 200, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(29);
    for (const NamedStage& stage : perPixelStages()) {
        HostPicture usual(picture);
        stage.run(usual.image());

        std::fesetround(FE_UPWARD);
        _mm_setcsr(_mm_getcsr() | 0x8040u);          // flush to zero, denormals are zero
        const unsigned odd = _mm_getcsr() & ~0x3Fu;  // without the exception flags
        HostPicture underOddMode(picture);
        stage.run(underOddMode.image());
        const unsigned after = _mm_getcsr() & ~0x3Fu;
        const int rounding = std::fegetround();
        std::fesetenv(FE_DFL_ENV);
        _mm_setcsr(0x1F80u);

        EXPECT_EQ(underOddMode.bytes(), usual.bytes()) << stage.name;
        EXPECT_EQ(after, odd) << stage.name;
        EXPECT_EQ(rounding, FE_UPWARD) << stage.name;
    }
}

TEST(TableStages, TakeEntriesInOrderWhateverTheStride) {
    // With a stride of 1 entry i + 1 begins at what entry i has stored as green.
    std::vector<float> overlapping = {0.1f, 0.2f, 0.3f, 0.4f};
    lut3d_exposureAdjustment(overlapping.data(), 2, 1, 50.0f);
    std::vector<float> expected = {0.1f, 0.2f, 0.3f, 0.4f};
    lut3d_exposureAdjustment(expected.data(), 1, 3, 50.0f);
    lut3d_exposureAdjustment(expected.data() + 1, 1, 3, 50.0f);
    EXPECT_EQ(overlapping, expected);
    EXPECT_GT(overlapping[1], overlapping[0] * 2.2f);

    // A negative stride walks backwards from the first entry.
    std::vector<float> backwards = {0.1f, 0.2f, 0.3f, 0.1f, 0.2f, 0.3f};
    lut3d_exposureAdjustment(backwards.data() + 3, 2, -3, 50.0f);
    EXPECT_EQ(backwards[0], backwards[3]);
    EXPECT_GT(backwards[0], 0.1f);
}

TEST(TableStages, ReturnTablesWithoutEntries) {
    float entry[] = {0.1f, 0.2f, 0.3f};
    EXPECT_EQ(lut3d_exposureAdjustment(nullptr, 5, 3, 50.0f), nullptr);
    EXPECT_EQ(lut3d_exposureAdjustment(entry, 0, 3, 50.0f), entry);
    EXPECT_EQ(entry[0], 0.1f);
}

}  // namespace
