// What all per-pixel stages share: formats, depths, padding, bad pictures, tables.

#include "walks/StageForms.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "filters/Stages.h"
#include "platform/Parallel.h"
#include "support/EveryStage.h"
#include "support/HostPicture.h"

namespace {

using keladjust::test::everyFormat;
using keladjust::test::HostPicture;
using keladjust::test::PixelFormat;
using keladjust::test::stageAlone;

struct NamedStage {
    std::string name;
    std::function<CxImage*(CxImage*)> run;
};

// Those of the catalogue with a kernel, at half of what they can do.
std::vector<NamedStage> kernelStages() {
    std::vector<NamedStage> all;
    for (const keladjust::Stage& stage : keladjust::stages) {
        if (stage.forms.pixels == nullptr) continue;
        all.push_back({stage.name.c_str(), [&stage, record = stageAlone(stage)](CxImage* image) {
                           return stage.run(image, record);
                       }});
    }
    return all;
}

// Those of them that find pixels by row and column and treat them alike everywhere.
const std::vector<NamedStage>& perPixelStages() {
    static const std::vector<NamedStage> stages = [] {
        std::vector<NamedStage> all;
        for (const NamedStage& stage : kernelStages()) {
            if (stage.name != "vignette" && stage.name != "brightness") all.push_back(stage);
        }
        return all;
    }();
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

// A helping thread's own errno is out of a host's sight.
TEST(PerPixelStages, SayInErrnoThatMemoryWasShort) {
    errno = 0;
    keladjust::guarded([] {});
    EXPECT_EQ(errno, 0);
    keladjust::guarded([] {
        keladjust::platform::parallelBands(2, 2, [](std::size_t band, std::size_t, std::size_t) {
            if (band == 1) throw std::bad_alloc();
        });
    });
    EXPECT_EQ(errno, ENOMEM);
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
    std::vector<NamedStage> stages = kernelStages();
    stages.push_back({"hue", [](CxImage* i) { return hueAdjustment(i, 10.0f); }});
    for (const NamedStage& stage : stages) {
        EXPECT_EQ(stage.run(nullptr), nullptr) << stage.name;
        for (CxImage* image : {&empty, &withoutBits, &wrapping, &noHeight}) {
            EXPECT_EQ(stage.run(image), image) << stage.name;
        }
        EXPECT_EQ(byte, 7) << stage.name;
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
