// What the stages that see the whole picture share: every format and size against the plain models,
// depths without a meaning, absurd settings, bad pictures.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "models/blur/Clarity.h"
#include "models/blur/Diffuse.h"
#include "models/dehaze/Dehaze.h"
#include "models/grain/Grain.h"
#include "models/lens/Distortion.h"
#include "models/lens/Fringing.h"
#include "models/sharpen/Sharpen.h"
#include "models/vignette/Vignette.h"
#include "models/white-balance/WhiteBalance.h"
#include "support/HostPicture.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

struct ModelledStage {
    std::string name;
    std::function<CxImage*(CxImage*, float)> run;
    std::function<void(CxImage&, float)> model;
    std::vector<float> settings;  // what the models are compared at
};

// Every kind of setting a stage treats in a way of its own.
const std::vector<ModelledStage>& modelledStages() {
    static const std::vector<ModelledStage> all = {
        {"clarity", clarity, clarityModel, {0, 1, 2, 3, 40, 100, 252, 253.9f, 254, -1, -50, -300}},
        {"sharpen",
         [](CxImage* i, float s) { return sharpen(i, s); },
         [](CxImage& i, float s) {
             // 16-bit pixels have no channel bytes to sharpen, other depths no pixels.
             if (i.bytesPerPixel == 0 || i.bytesPerPixel == 2) return;
             sharpenModel(i, s);
         },
         {0, 60, 255, 400, -80}},
        {"distortion", distortFilter, distortionModel, {0, 100, 30, 1, -1, -50, -100, -250}},
        {"fringing", fringingFilter, fringingModel, {0, 100, 30, -20, -100, 900}},
        {"dehaze", dehaze, dehazeModel, {0, 100, 30, 5, -30, -100}},
        {"diffuse", diffuse, diffuseModel, {0, 100, 720, 1440, -50, -720}},
        {"grain",
         [](CxImage* i, float s) { return addNoiseFilter(i, s, 60.0f); },
         [](CxImage& i, float s) { grainModel(i, s, 60.0f); },
         {0, 100, 10, -40}},
        {"white balance", whiteBalanceAdjustment, whiteBalanceModel, {0, 100, 5, 450, 600, -1}},
        {"vignette",
         [](CxImage* i, float s) { return vignetteAdjustFilter(i, s, 80, 70, 30, 40, s / 2); },
         [](CxImage& i, float s) {
             vignetteModel(i, {s, 80, 70, 30, 40, s / 2});
         },
         {0, 100, 40, -30, -100}},
    };
    return all;
}

void expectAsModel(const ModelledStage& stage, float setting, HostPicture& picture) {
    HostPicture expected(picture);
    if (expected.image()->GetSize() > 0) stage.model(*expected.image(), setting);
    ASSERT_EQ(stage.run(picture.image(), setting), picture.image());
    ASSERT_EQ(picture.bytes(), expected.bytes())
        << stage.name << " " << setting << " on " << picture.image()->width << " x "
        << picture.image()->height << ", " << picture.image()->bpp << " bits, format "
        << picture.image()->format;
    ASSERT_TRUE(picture.guardsIntact()) << stage.name << " " << setting;
}

constexpr std::pair<unsigned, unsigned> sizes[] = {{1, 1}, {1, 9},   {9, 1},    {2, 3},
                                                   {3, 2}, {5, 7},   {16, 15},  {8, 8},
                                                   {7, 3}, {61, 43}, {130, 29}, {17, 300}};

TEST(SpatialStages, FollowTheirFormulasInEveryFormatAndSize) {
    for (const ModelledStage& stage : modelledStages()) {
        for (const PixelFormat format : everyFormat) {
            for (const auto& [width, height] : sizes) {
                for (const float setting : stage.settings) {
                    HostPicture picture(width, height, format.bpp, format.format);
                    picture.fillRandom(width * 7 + height);
                    ASSERT_NO_FATAL_FAILURE(expectAsModel(stage, setting, picture));
                }
            }
        }
    }
}

// Random bytes have no dark neighbourhoods and no even parts; slopes do.
TEST(SpatialStages, FollowTheirFormulasOnSmoothPictures) {
    for (const ModelledStage& stage : modelledStages()) {
        for (const float setting : stage.settings) {
            HostPicture picture(150, 90, 32, IMAGE_FORMAT_BGRA);
            for (unsigned y = 0; y < 90; ++y) {
                for (unsigned x = 0; x < 150; ++x) {
                    const auto at = [](unsigned value) { return static_cast<std::uint8_t>(value); };
                    picture.setPixel(
                        x, y, {at(100 + x), at(60 + y + x / 2), at(30 + 2 * y), at(255 - x / 10)});
                }
            }
            ASSERT_NO_FATAL_FAILURE(expectAsModel(stage, setting, picture));
        }
    }
}

// A stage goes along the buffer by bytes, or through pixel access: at depths and formats without a
// meaning the first kind changes the bytes there are, the second none, and neither any other's.
TEST(SpatialStages, StayInsideTheBufferAtDepthsWithoutAMeaning) {
    for (const ModelledStage& stage : modelledStages()) {
        for (const unsigned bpp : {1u, 4u, 7u, 12u, 15u, 40u, 48u, 64u, 96u, 300u}) {
            for (const auto& [width, height] : {std::pair{1u, 1u}, {5u, 7u}, {33u, 20u}}) {
                for (const float setting : {60.0f, -60.0f}) {
                    HostPicture picture(width, height, bpp, IMAGE_FORMAT_BGR);
                    picture.fillRandom(bpp);
                    ASSERT_NO_FATAL_FAILURE(expectAsModel(stage, setting, picture));
                }
            }
        }
    }
}

TEST(SpatialStages, TakeEverySetting) {
    for (const ModelledStage& stage : modelledStages()) {
        for (const PixelFormat format : everyFormat) {
            for (const float setting : {quietNan, infinity, -infinity, 1e30f, -1e30f, 1e-42f}) {
                HostPicture picture(21, 12, format.bpp, format.format);
                picture.fillRandom(5);
                ASSERT_NO_FATAL_FAILURE(expectAsModel(stage, setting, picture));
            }
        }
    }
}

TEST(SpatialStages, ReturnPicturesWithoutPixels) {
    CxImage empty;
    unsigned char* noBits = nullptr;
    CxImage withoutBits(&noBits, 10, 10, 32, IMAGE_FORMAT_BGRA);
    // 2^30 columns of 32 bits wrap to rows of no bytes: the buffer holds none of these pixels.
    unsigned char byte = 7;
    unsigned char* bits = &byte;
    CxImage wrapping(&bits, 1u << 30, 1, 32, IMAGE_FORMAT_BGRA);
    CxImage noHeight(&bits, 5, 0, 32, IMAGE_FORMAT_BGRA);
    CxImage noWidth(&bits, 0, 5, 32, IMAGE_FORMAT_BGRA);
    for (const ModelledStage& stage : modelledStages()) {
        for (const float setting : {0.0f, 50.0f, -50.0f}) {
            EXPECT_EQ(stage.run(nullptr, setting), nullptr) << stage.name;
            for (CxImage* image : {&empty, &withoutBits, &wrapping, &noHeight, &noWidth}) {
                EXPECT_EQ(stage.run(image, setting), image) << stage.name;
            }
            EXPECT_EQ(byte, 7) << stage.name;
        }
    }
}

}  // namespace
