// Adjustments over the running engine against the float models of its programs: a picture comes
// back from the GPU as the formulas say, whatever its size and format.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <cstdint>
#include <iostream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "engine/KelOgreEffectBase.h"
#include "engine/OgreEngine.h"
#include "host/LibraryState.h"
#include "models/gpu/Path.h"
#include "support/Closeness.h"
#include "support/HostPicture.h"
#include "support/Photograph.h"
#include "support/StageSettings.h"

namespace {

using namespace keladjust::test;
using keladjust::libraryState;

// Null while the effect has not rendered.
Ogre::TexturePtr renderTextureOf(keladjust::GpuEffect effect) {
    return keladjust::OgreEngine::instance().effect(effect)->renderTexture();
}

// A driver's powers, logarithms and divisions may differ from the C library's in the last bit,
// which moves a rare byte by one level; where a comparison falls to the other side, or a spatial
// stage amplifies it, by more.
constexpr double requiredShare = 0.995;

struct Size {
    unsigned width, height;
};
std::ostream& operator<<(std::ostream& out, Size size) {
    return out << size.width << " x " << size.height;
}

// Every format there is, in the depths that it has.
std::vector<PixelFormat> everyFormatAndNone() {
    std::vector<PixelFormat> formats(std::begin(everyFormat), std::end(everyFormat));
    formats.push_back({32, IMAGE_FORMAT_UNKNOWN});
    return formats;
}

void fill(HostPicture& picture, auto colourAt) {
    for (unsigned y = 0; y < picture.image()->GetHeight(); ++y) {
        for (unsigned x = 0; x < picture.image()->GetWidth(); ++x) {
            picture.setPixel(x, y, colourAt(x, y));
        }
    }
}

// A photograph, repeated where the size goes beyond it.
HostPicture photograph(Size size, PixelFormat format) {
    static HostPicture photo = photographCrop("abstract/Elephants_5640x3172", 800, 80, 4000, 3000);
    HostPicture picture(size.width, size.height, format.bpp, format.format);
    fill(picture, [](unsigned x, unsigned y) {
        _tagMyRGBQUAD colour = photo.pixel((x + 1800) % 4000, (y + 1300) % 3000);
        colour.alpha = static_cast<std::uint8_t>(3 * x + y);
        return colour;
    });
    return picture;
}

// 32 levels of each channel, every combination.
HostPicture colourRamps() {
    HostPicture picture(256, 128, 32, IMAGE_FORMAT_BGRA);
    fill(picture, [](unsigned x, unsigned y) {
        const auto level = [](unsigned step) { return static_cast<std::uint8_t>(step * 255 / 31); };
        return _tagMyRGBQUAD{level(x & 31), level((x >> 5) + 8 * (y & 3)), level(y >> 2),
                             static_cast<std::uint8_t>(x)};
    });
    return picture;
}

// The engine starts anew for each test, so that nothing has been rendered before.
class GpuPath : public testing::Test {
protected:
    void SetUp() override {
        setLogPath(testing::TempDir().c_str());
        ASSERT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));
        ASSERT_FALSE(libraryState().cpuOnly);
    }
    void TearDown() override {
        releaseOgre();
        if (worstShare_ <= 1) std::cout << "worst: " << worst_ << '\n';
    }

    // Adjusts a copy on the GPU path and compares it, padding included, with the model's.
    void expectModel(const std::string& what, const HostPicture& picture,
                     const _AdjustParam& settings) {
        HostPicture got = picture;
        HostPicture expected = picture;
        EXPECT_EQ(doAdjust(got.image(), settings), got.image());
        EXPECT_TRUE(got.guardsIntact());
        gpu::adjust(*expected.image(), settings);
        const Closeness closeness(got.bytes(), expected.bytes());
        std::ostringstream line;
        line << what << ": " << closeness;
        EXPECT_GE(closeness.share(), requiredShare) << line.str();
        std::cout << line.str() << '\n';
        if (closeness.share() >= worstShare_) return;
        worstShare_ = closeness.share();
        worst_ = line.str();
    }

    void expectModels(const std::vector<NamedSettings>& stages) {
        for (const auto& [name, settings] : stages) {
            expectModel(name + " on ramps", colourRamps(), settings);
            expectModel(name + " on a photograph", photograph({640, 427}, {32, IMAGE_FORMAT_BGRA}),
                        settings);
        }
    }

private:
    double worstShare_ = 2;
    std::string worst_;
};

// Stages of the CPU alone, which the GPU path runs as well: clarity twice, sharpening once.
std::vector<NamedSettings> otherStages() {
    using P = _AdjustParam;
    return {
        only("clarity 40", &P::clarity, 40),
        only("sharpen 60", &P::sharpen, 60),
        only("distortion 20", &P::distortion, 20),
        only("fringing 30", &P::fringing, 30),
        only("dehaze 30", &P::dehaze, 30),
        only("diffuse 10", &P::diffuse, 10),
        only("colour noise reduction 30", &P::colourNoiseReduction, 30),
        only("luminance noise reduction 30", &P::luminanceNoiseReduction, 30),
        only("sharpened twice",
             [](P& p) {
                 p.sharpen = 40;
                 p.vignetteAmount = -20;
             }),
        everyGpuStage(),
        everyStage(),
    };
}

TEST_F(GpuPath, AdjustmentStagesFollowTheirModels) {
    expectModels(adjustmentStages());
}

TEST_F(GpuPath, RangeStagesFollowTheirModels) {
    expectModels(rangeStages());
}

TEST_F(GpuPath, OtherStagesAndAllTogetherFollowTheirModels) {
    expectModels(otherStages());
}

// Odd rows, padding, one pixel, the largest side there may be: formats differ in how their rows
// travel.
class GpuSizes : public GpuPath, public testing::WithParamInterface<Size> {};

TEST_P(GpuSizes, FollowTheModelInEveryFormat) {
    for (const PixelFormat format : everyFormatAndNone()) {
        const HostPicture picture = photograph(GetParam(), format);
        std::ostringstream what;
        what << "all together, " << GetParam() << ", " << format.bpp << " bits, format "
             << format.format;
        expectModel(what.str(), picture, everyGpuStage().settings);
    }
}

INSTANTIATE_TEST_SUITE_P(Pictures, GpuSizes,
                         testing::Values(Size{1, 1}, Size{2, 3}, Size{5, 7}, Size{640, 427},
                                         Size{4000, 3000}, Size{8192, 16}),
                         [](const testing::TestParamInfo<Size>& size) {
                             return std::to_string(size.param.width) + "by" +
                                    std::to_string(size.param.height);
                         });

TEST_F(GpuPath, IdentityKeepsEveryByteAndRendersNothing) {
    const _AdjustParam identity = only("identity", [](_AdjustParam&) {}).settings;
    for (const PixelFormat format : everyFormatAndNone()) {
        HostPicture picture = photograph({61, 37}, format);
        const std::vector<std::uint8_t> before = picture.bytes();
        doAdjust(picture.image(), identity);
        EXPECT_EQ(picture.bytes(), before) << format.bpp << " bits, format " << format.format;
    }
    EXPECT_EQ(renderTextureOf(keladjust::basicAdjustEffect), nullptr);
    EXPECT_EQ(renderTextureOf(keladjust::rangeEffect), nullptr);
}

// The shape of a vignette that is not there, bounds of ranges that change nothing.
TEST_F(GpuPath, SettingsWithoutEffectAloneRenderNothing) {
    HostPicture picture = photograph({61, 37}, {24, IMAGE_FORMAT_BGR});
    const std::vector<std::uint8_t> before = picture.bytes();
    doAdjust(picture.image(), only("shape", [](_AdjustParam& p) {
                                  setRangeBounds(p);
                                  p.vignetteSize = 30;
                                  p.vignetteRoundness = 20;
                                  p.vignetteFeather = 40;
                                  p.vignetteHighlights = 90;
                              }).settings);
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_EQ(renderTextureOf(keladjust::rangeEffect), nullptr);
}

// Sharpening is left to the CPU unless the range program runs for another reason.
TEST_F(GpuPath, SharpeningAloneRendersNothing) {
    HostPicture picture = photograph({61, 37}, {32, IMAGE_FORMAT_BGRA});
    HostPicture expected = picture;
    doAdjust(picture.image(), only("sharpen", &_AdjustParam::sharpen, 50).settings);
    sharpen(expected.image(), 50);
    EXPECT_EQ(picture.bytes(), expected.bytes());
    EXPECT_EQ(renderTextureOf(keladjust::rangeEffect), nullptr);
}

// A setting that is no number is a change as well, so that the program runs.
TEST_F(GpuPath, NotANumberRenders) {
    HostPicture picture = photograph({61, 37}, {32, IMAGE_FORMAT_BGRA});
    doAdjust(picture.image(),
             only("nan", &_AdjustParam::whites, std::numeric_limits<float>::quiet_NaN()).settings);
    EXPECT_TRUE(picture.guardsIntact());
    EXPECT_NE(renderTextureOf(keladjust::basicAdjustEffect), nullptr);
}

// What a host sees as red, green, blue, alpha comes back as blue, green, red, alpha, each time.
TEST_F(GpuPath, EachRenderSwapsRedAndBlueOfRgba) {
    HostPicture once(4, 4, 32, IMAGE_FORMAT_RGBA);
    fill(once, [](unsigned, unsigned) { return _tagMyRGBQUAD{10, 20, 40, 77}; });
    HostPicture twice = once;
    const NamedSettings doubled = only("brightness", &_AdjustParam::brightness, 100);
    doAdjust(once.image(), doubled.settings);
    EXPECT_EQ(once.pixel(1, 2), (_tagMyRGBQUAD{80, 40, 20, 77}));

    _AdjustParam andGreyRange = doubled.settings;
    andGreyRange.range[KELADJUST_RANGE_BLUE].brightness = 1e-30f;
    doAdjust(twice.image(), andGreyRange);
    EXPECT_EQ(twice.pixel(1, 2), (_tagMyRGBQUAD{20, 40, 80, 77}));
}

}  // namespace
