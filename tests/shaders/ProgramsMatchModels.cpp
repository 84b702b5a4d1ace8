// Each program against the float model of its stages, on the OpenGL driver of this machine: what a
// user sees on the way over the GPU is what the formulas say. Then single pixels by hand.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "models/gpu/Adjustment.h"
#include "models/gpu/Lens.h"
#include "models/gpu/RangeVignette.h"
#include "models/gpu/Texture.h"
#include "shaders/ProgramRunner.h"
#include "shaders/Programs.h"
#include "support/Closeness.h"
#include "support/Photograph.h"
#include "support/StageSettings.h"

namespace {

using namespace keladjust::test;
using gpu::Texture;
namespace shaders = keladjust::shaders;

// Powers, logarithms and divisions differ by driver in their last bits, which moves a rare byte by
// one level; a comparison that lands on the other side of a threshold moves it by more.
constexpr double requiredShare = 0.995;

std::string combinedProgram() {
    return std::string(shaders::combinedDeclarations) + shaders::combinedMain;
}

ProgramSettings pictureSettings(const Texture& picture) {
    return {{"Sample", 0}, {"imageWidth", picture.width()}, {"imageHeight", picture.height()}};
}

ProgramSettings adjustmentSettings(const _AdjustParam& p) {
    return {{"Sample", 0},
            {"temperature", p.temperature},
            {"tint", p.tint},
            {"exposure", p.exposure},
            {"brightness", p.brightness},
            {"contrast", p.contrast},
            {"vib", p.vibrance},
            {"sat", p.saturation},
            {"highLight", p.highlights},
            {"shadow", p.shadows},
            {"whiteLevel", p.whites},
            {"blackLevel", p.blacks}};
}

// What the range and the combined program share.
ProgramSettings rangeSettings(const _AdjustParam& p, const Texture& picture) {
    ProgramSettings settings = pictureSettings(picture);
    const _AdjustColourRange* range = p.range;
    for (const std::string name :
         {"Red", "Orange", "Yellow", "Green", "Magenta", "Purple", "Blue", "Aqua"}) {
        settings[name + "_degreeMinVal"] = range->minDegree;
        settings[name + "_degreeMaxVal"] = range->maxDegree;
        settings[name + "_hueVal"] = range->hue;
        settings[name + "_satVal"] = range->saturation;
        settings[name + "_brightnessVal"] = range->brightness;
        ++range;
    }
    settings["amount"] = p.vignetteAmount;
    settings["size"] = p.vignetteSize;
    settings["roundness"] = p.vignetteRoundness;
    settings["feather"] = p.vignetteFeather;
    settings["highlights"] = p.vignetteHighlights;
    return settings;
}

// 32 levels of each channel, every combination, with alphas of all kinds.
Texture colourLattice() {
    std::vector<std::uint8_t> rgba;
    for (unsigned i = 0; i < 1u << 15; ++i) {
        const auto level = [](unsigned step) { return static_cast<std::uint8_t>(step * 255 / 31); };
        for (const unsigned step : {i & 31, i >> 5 & 31, i >> 10}) rgba.push_back(level(step));
        rgba.push_back(static_cast<std::uint8_t>(i * 7));
    }
    return {rgba, 256, 128};
}

// A corner of one photograph.
Texture photograph(int width, int height) {
    static HostPicture crop = photographCrop("nature/FreshFlower", 500, 300, 640, 428);
    std::vector<std::uint8_t> rgba;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const _tagMyRGBQUAD p = crop.image()->GetPixelColor(x, y, false);
            rgba.insert(rgba.end(), {p.red, p.green, p.blue, static_cast<std::uint8_t>(x + y)});
        }
    }
    return {rgba, width, height};
}

const std::vector<Texture>& pictures() {
    static const std::vector<Texture> all{colourLattice(), photograph(640, 427), photograph(5, 7),
                                          photograph(2, 3), photograph(1, 1)};
    return all;
}

class Programs : public testing::Test {
protected:
    // Renders every picture and compares with `model(picture, x, y)`.
    template <class Settings, class Model>
    void expectModel(const std::string& name, const std::string& program, Settings settings,
                     Model model) {
        std::string worst;
        double worstShare = 2;
        for (const Texture& picture : pictures()) {
            const Texture got = runner_.render(program, settings(picture), picture);
            const Texture expected =
                picture.rendered([&](int x, int y) { return model(picture, x, y); });
            const Closeness closeness(got.bytes(), expected.bytes());
            if (closeness.share() >= worstShare) continue;
            worstShare = closeness.share();
            std::ostringstream line;
            line << picture.width() << " x " << picture.height() << ": " << closeness;
            worst = line.str();
        }
        EXPECT_GE(worstShare, requiredShare) << name << ", " << worst;
        std::cout << name << ", worst on " << worst << '\n';
    }

    ProgramRunner runner_;
};

TEST_F(Programs, AdjustmentFollowsItsModel) {
    std::vector<NamedSettings> cases = adjustmentStages();
    cases.push_back(everyGpuStage());
    for (const auto& [name, p] : cases) {
        expectModel(
            name, shaders::adjustProgram, [&](const Texture&) { return adjustmentSettings(p); },
            [&](const Texture& picture, int x, int y) {
                return gpu::adjustment(p, picture.at(x, y));
            });
    }
}

// The window of the strongest contrasts, 120..127, in which a level is 17. Its edges themselves are
// left out: they may fall to either side.
TEST_F(Programs, ContrastOf255TakesTheWindowOfItsNeighbours) {
    const Texture levels({0, 118, 119, 9, 121, 124, 126, 9, 129, 130, 255, 9}, 3, 1);
    const std::vector<std::uint8_t> expected{0, 0, 0, 9, 17, 68, 102, 9, 255, 255, 255, 9};
    for (const float contrast : {200.0f, 255.0f}) {
        const _AdjustParam p = only("contrast", &_AdjustParam::contrast, contrast).settings;
        EXPECT_EQ(runner_.render(shaders::adjustProgram, adjustmentSettings(p), levels).bytes(),
                  expected)
            << contrast;
        ProgramSettings settings = adjustmentSettings(p);
        settings.merge(rangeSettings(p, levels));
        settings["vignette_exposure"] = 0.0f;
        EXPECT_EQ(runner_.render(combinedProgram(), settings, levels).bytes(), expected)
            << "combined, " << contrast;
    }
    const _AdjustParam p = only("contrast", &_AdjustParam::contrast, 255.0f).settings;
    expectModel(
        "contrast 255", shaders::adjustProgram,
        [&](const Texture&) { return adjustmentSettings(p); },
        [&](const Texture& picture, int x, int y) { return gpu::adjustment(p, picture.at(x, y)); });
}

TEST_F(Programs, RangeFollowsItsModel) {
    std::vector<NamedSettings> cases = rangeStages();
    cases.push_back(only("sharpen 60", &_AdjustParam::sharpen, 60));
    cases.push_back(only("sharpen 255", &_AdjustParam::sharpen, 255));
    cases.push_back(everyGpuStage());
    for (const auto& [name, p] : cases) {
        expectModel(
            name, shaders::rangeProgram,
            [&](const Texture& picture) {
                ProgramSettings settings = rangeSettings(p, picture);
                settings["sharpeness"] = p.sharpen;
                settings["exposure"] = p.vignetteExposure;
                return settings;
            },
            [&](const Texture& picture, int x, int y) {
                return gpu::rangeProgram(p, picture, x, y);
            });
    }
}

TEST_F(Programs, CombinedFollowsBothModels) {
    for (const auto& [name, p] : {everyGpuStage(), rangeStages().back()}) {
        expectModel(
            name, combinedProgram(),
            [&](const Texture& picture) {
                ProgramSettings settings = adjustmentSettings(p);
                settings.merge(rangeSettings(p, picture));
                settings["vignette_exposure"] = p.vignetteExposure;
                return settings;
            },
            [&](const Texture& picture, int x, int y) {
                return gpu::rangesAndVignette(p, picture, x, y,
                                              gpu::adjustment(p, picture.at(x, y)));
            });
    }
}

TEST_F(Programs, LensFollowsItsModel) {
    for (const auto& [distortion, fringing] : std::initializer_list<std::pair<int, int>>{
             {80, 0}, {-60, 0}, {0, 90}, {0, -90}, {35, -50}, {-35, 50}}) {
        _AdjustParam p{};
        p.distortion = static_cast<float>(distortion);
        p.fringing = static_cast<float>(fringing);
        expectModel(
            "distortion " + std::to_string(distortion) + ", fringing " + std::to_string(fringing),
            shaders::lensProgram,
            [&](const Texture& picture) {
                ProgramSettings settings = pictureSettings(picture);
                settings["distortion"] = p.distortion;
                settings["fringing"] = p.fringing;
                return settings;
            },
            [&](const Texture& picture, int x, int y) { return gpu::lens(p, picture, x, y); });
    }
}

using Pixel = std::array<std::uint8_t, 4>;

Texture plane(Pixel pixel, int width = 4, int height = 4) {
    std::vector<std::uint8_t> rgba;
    for (int i = 0; i < width * height; ++i) rgba.insert(rgba.end(), pixel.begin(), pixel.end());
    return {rgba, width, height};
}

Pixel pixelOf(const Texture& picture, int x, int y) {
    const auto at = picture.bytes().begin() + (y * picture.width() + x) * 4;
    return {at[0], at[1], at[2], at[3]};
}

class ProgramEdges : public Programs {
protected:
    Pixel adjusted(Pixel pixel, const ProgramSettings& settings) {
        ProgramSettings all = adjustmentSettings(only("identity", [](_AdjustParam&) {}).settings);
        for (const auto& [name, value] : settings) all[name] = value;
        return pixelOf(runner_.render(shaders::adjustProgram, all, plane(pixel)), 0, 0);
    }

    Texture ranged(const Texture& picture, const ProgramSettings& settings) {
        ProgramSettings all = rangeSettings(_AdjustParam{}, picture);
        all["sharpeness"] = 0.0f;
        all["exposure"] = 0.0f;
        for (const auto& [name, value] : settings) all[name] = value;
        return runner_.render(shaders::rangeProgram, all, picture);
    }

    Texture lensed(const Texture& picture, float distortion, float fringing) {
        ProgramSettings settings = pictureSettings(picture);
        settings["distortion"] = distortion;
        settings["fringing"] = fringing;
        return runner_.render(shaders::lensProgram, settings, picture);
    }
};

TEST_F(ProgramEdges, IdentityKeepsEveryByte) {
    const _AdjustParam p = only("identity", [](_AdjustParam&) {}).settings;
    for (const Texture& picture : pictures()) {
        ProgramSettings adjust = adjustmentSettings(p);
        EXPECT_EQ(runner_.render(shaders::adjustProgram, adjust, picture).bytes(), picture.bytes());
        EXPECT_EQ(ranged(picture, {{"Red_degreeMinVal", 330.0f}, {"size", 50.0f}}).bytes(),
                  picture.bytes());
        EXPECT_EQ(lensed(picture, 0, 0).bytes(), picture.bytes());
        adjust.merge(rangeSettings(p, picture));
        EXPECT_EQ(runner_.render(combinedProgram(), adjust, picture).bytes(), picture.bytes());
    }
}

TEST_F(ProgramEdges, StagesThatLeaveBlackAndWhiteAlone) {
    for (const std::string stage : {"highLight", "shadow", "whiteLevel", "blackLevel"}) {
        for (const float value : {-100.0f, 100.0f}) {
            EXPECT_EQ(adjusted({0, 0, 0, 9}, {{stage, value}}), (Pixel{0, 0, 0, 9})) << stage;
            EXPECT_EQ(adjusted({255, 255, 255, 9}, {{stage, value}}), (Pixel{255, 255, 255, 9}))
                << stage;
        }
    }
}

// Divisions by zero at black and white, where compilers may fold the terms that prevent them.
TEST_F(ProgramEdges, TemperatureKeepsLightnessOfExtremes) {
    for (const int value : {2000, 9000, 11600, 20000}) {
        EXPECT_EQ(adjusted({0, 0, 0, 255}, {{"temperature", value}}), (Pixel{0, 0, 0, 255}))
            << value;
        EXPECT_EQ(adjusted({255, 255, 255, 255}, {{"temperature", value}}),
                  (Pixel{255, 255, 255, 255}))
            << value;
    }
    // The strong orange light takes all of a blue away: what is left is the grey of its lightness.
    const Pixel blue = adjusted({0, 0, 255, 255}, {{"temperature", 20000}});
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(blue[static_cast<std::size_t>(c)], 127.5, 1) << c;
}

// The light's temperature is 26000 less a low setting and 18100 less a high one, 1700 at least;
// what that makes of (204, 102, 51) has been worked out with decimals and is rounded here.
TEST_F(ProgramEdges, TemperatureIsThatOfTheLight) {
    struct Case {
        int setting;
        double red, green, blue;
    };
    for (const Case& each : {Case{11600, 204.588, 102.030, 50.412},  // 6500
                             Case{2000, 148.472, 119.894, 106.528},  // 24000
                             Case{16000, 255, 48.796, 0},            // 2100
                             Case{16400, 255, 30.222, 0},            // 1700
                             Case{20000, 255, 30.222, 0},            // -1900 and so 1700
                             Case{2000000000, 255, 30.222, 0}}) {
        const Pixel result = adjusted({204, 102, 51, 7}, {{"temperature", each.setting}});
        EXPECT_NEAR(result[0], each.red, 0.55) << each.setting;
        EXPECT_NEAR(result[1], each.green, 0.55) << each.setting;
        EXPECT_NEAR(result[2], each.blue, 0.55) << each.setting;
        EXPECT_EQ(result[3], 7);
    }
}

// A tint may leave 0..1; a darkening after it works on what it left.
TEST_F(ProgramEdges, TintIsClampedByTheNextStageOnly) {
    const ProgramSettings tint{{"tint", 100.0f}};
    EXPECT_EQ(adjusted({255, 255, 255, 1}, tint), (Pixel{255, 211, 255, 1}));
    EXPECT_EQ(adjusted({0, 0, 0, 1}, tint), (Pixel{0, 0, 0, 1}));
    // 255 x (1 + 100 x 100 / 225 / 255) x 2^-0.6
    EXPECT_EQ(adjusted({255, 255, 255, 1}, {{"tint", 100.0f}, {"exposure", -50.0f}}),
              (Pixel{198, 139, 198, 1}));
}

TEST_F(ProgramEdges, GreyIsNeverSaturated) {
    EXPECT_EQ(adjusted({77, 77, 77, 0}, {{"sat", 100.0f}}), (Pixel{77, 77, 77, 0}));
    EXPECT_EQ(adjusted({77, 77, 77, 0}, {{"sat", -100.0f}}), (Pixel{77, 77, 77, 0}));
}

TEST_F(ProgramEdges, WrappingRangeTakesRedInFull) {
    const ProgramSettings bounds{{"Red_degreeMinVal", 330.0f}, {"Red_degreeMaxVal", 30.0f}};
    ProgramSettings settings = bounds;
    settings["Red_hueVal"] = 100.0f;  // 120 degrees
    EXPECT_EQ(pixelOf(ranged(plane({255, 0, 0, 3}), settings), 0, 0), (Pixel{0, 255, 0, 3}));
    // A band that ends at 0 degrees ends with its full weight there.
    settings["Red_degreeMaxVal"] = 0.0f;
    EXPECT_EQ(pixelOf(ranged(plane({255, 0, 0, 3}), settings), 0, 0), (Pixel{0, 255, 0, 3}));
}

TEST_F(ProgramEdges, GreyBelongsToBlue) {
    const Texture grey = plane({100, 100, 100, 8});
    const ProgramSettings bounds{{"Blue_degreeMinVal", 210.0f}, {"Blue_degreeMaxVal", 270.0f}};
    ProgramSettings brighter = bounds;
    brighter["Blue_brightnessVal"] = 80.0f;  // a tenth of the lightness
    EXPECT_EQ(pixelOf(ranged(grey, brighter), 0, 0), (Pixel{110, 110, 110, 8}));
    for (const char* change : {"Blue_hueVal", "Blue_satVal"}) {
        ProgramSettings other = bounds;
        other[change] = 80.0f;
        EXPECT_EQ(ranged(grey, other).bytes(), grey.bytes()) << change;
    }
}

TEST_F(ProgramEdges, DarkVignetteIsBlackBeyondItsBand) {
    const Texture white = plane({255, 255, 255, 5}, 1000, 500);
    const Texture dark = ranged(white, {{"amount", -100.0f}, {"highlights", 50.0f}});
    EXPECT_EQ(pixelOf(dark, 700, 250), (Pixel{0, 0, 0, 5}));
    EXPECT_EQ(pixelOf(dark, 598, 250), (Pixel{255, 255, 255, 5})) << "inside";
    EXPECT_EQ(pixelOf(dark, 500, 298), (Pixel{255, 255, 255, 5})) << "inside";
    EXPECT_EQ(pixelOf(dark, 500, 304), (Pixel{0, 0, 0, 5})) << "above the flatter side";
}

// Of 101 columns the middle one is number 50, whose left edge is the centre.
TEST_F(ProgramEdges, VignetteOfAnOddSizeIsCentredHalfAPixelEarly) {
    const Texture dark =
        ranged(plane({200, 200, 200, 5}, 101, 101), {{"amount", -100.0f}, {"highlights", 50.0f}});
    for (int distance = 0; distance < 50; ++distance) {
        EXPECT_EQ(pixelOf(dark, 50 + distance, 50), pixelOf(dark, 49 - distance, 50)) << distance;
    }
}

TEST_F(ProgramEdges, LensLeavesTheMiddleAlone) {
    Texture picture = photograph(5, 7);
    EXPECT_EQ(pixelOf(lensed(picture, 70, 60), 2, 3), pixelOf(picture, 2, 3));
    EXPECT_EQ(pixelOf(lensed(picture, -70, -60), 2, 3), pixelOf(picture, 2, 3));
}

TEST_F(ProgramEdges, FringingLeavesAlphaWhereItWas) {
    const Texture picture = photograph(640, 427);
    const Texture fringed = lensed(picture, 0, 80);
    EXPECT_NE(fringed.bytes(), picture.bytes());
    for (std::size_t i = 3; i < picture.bytes().size(); i += 4) {
        ASSERT_EQ(fringed.bytes()[i], picture.bytes()[i]) << i;
    }
}

}  // namespace
