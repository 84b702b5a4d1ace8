#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

#include "support/ColourSweep.h"

namespace {

using keladjust::test::Bytes;
using keladjust::test::clampByte;
using keladjust::test::clampUnit;
using keladjust::test::expectEveryColour;
using keladjust::test::expectEveryEntry;
using keladjust::test::Floats;
using keladjust::test::HostPicture;

struct BlackBody {
    double rgb[3];
};

BlackBody blackBody(double kelvin) {
    const double x = std::min(std::max(kelvin, 1000.0), 40000.0) / 100;
    const auto clamp = [](double v) { return std::min(std::max(v, 0.0), 1.0); };
    return {{x <= 66 ? 1 : clamp(1.292936186062745 * std::pow(x - 60, -0.1332047592)),
             clamp(x <= 66 ? 0.3900815787690196 * std::log(x) - 0.6318414437886275
                           : 1.1298908608952942 * std::pow(x - 60, -0.0755148492)),
             x >= 66   ? 1
             : x <= 19 ? 0
                       : clamp(0.543206789110196 * std::log(x - 10) - 1.19625408914)}};
}

double kelvinOf(double setting) {
    return setting < 11500 ? 26000 - setting : std::max(18100 - setting, 1700.0);
}

float strengthOf(double setting) {
    const float d = 1.0f - static_cast<float>(kelvinOf(setting)) / 11500.0f;
    return std::fabs(d) * 1.7f;
}

// 8-bit HSL, written for this test: hue, saturation, lightness.
Bytes hslOf(Bytes rgb) {
    const auto [lo, hi] = std::minmax({rgb[0], rgb[1], rgb[2]});
    const int sum = hi + lo;
    const int d = hi - lo;
    const int l = (sum + 1) * 255 / 510;
    if (d == 0) return {170, 0, l};
    const int s = l <= 127 ? (d * 255 + sum / 2) / sum : (d * 255 + (510 - sum) / 2) / (510 - sum);
    const auto part = [&](int c) { return ((hi - c) * 42 + d / 2) / d; };
    const int h = rgb[0] == hi   ? part(rgb[2]) - part(rgb[1])
                  : rgb[1] == hi ? 85 + part(rgb[0]) - part(rgb[2])
                                 : 170 + part(rgb[1]) - part(rgb[0]);
    return {h & 255, s, l};
}

Bytes rgbOf(Bytes hsl) {
    const float h = static_cast<float>(hsl[0]) * 360.0f / 255.0f;
    const float s = static_cast<float>(hsl[1]) / 255.0f;
    const float l = static_cast<float>(hsl[2]) / 255.0f;
    const float m2 = s == 0 ? l : l <= 0.5f ? l * (1.0f + s) : l + s - l * s;
    const float m1 = s == 0 ? l : 2.0f * l - m2;
    const auto channel = [&](float hue) {
        if (s == 0) return static_cast<int>(l * 255.0f);
        if (hue > 360)
            hue -= 360.0f;
        else if (hue < 0)
            hue += 360.0f;
        const float v = hue < 60    ? m1 + (m2 - m1) * hue / 60.0f
                        : hue < 180 ? m2
                        : hue < 240 ? m1 + (m2 - m1) * (240.0f - hue) / 60.0f
                                    : m1;
        return static_cast<int>(v * 255.0f);
    };
    return {channel(h + 120.0f), channel(h), channel(h - 120.0f)};
}

Bytes temperatureModel(double setting, Bytes in) {
    const BlackBody body = blackBody(kelvinOf(setting));
    const float t = strengthOf(setting);
    Bytes blended{};
    for (std::size_t c = 0; c < 3; ++c) {
        const auto p = static_cast<float>(in[c]);
        const auto colour = static_cast<float>(static_cast<int>(body.rgb[c] * 255.0));
        const float m = std::trunc((p / 255.0f) * (colour / 255.0f) * 255.0f);
        blended[c] = clampByte(p * (1.0f - t) + m * t);
    }
    Bytes hsl = hslOf(blended);
    const auto [lo, hi] = std::minmax({in[0], in[1], in[2]});
    hsl[2] = (lo + hi) >> 1;
    return rgbOf(hsl);
}

TEST(Temperature, FollowsTheFormulaForEveryColour) {
    for (const long setting : {0L, 9000L, 11499L, 11501L, 14000L, 16400L, -2147483647L}) {
        expectEveryColour(
            [&](CxImage* image) { return temperatureAdjustment(image, setting); },
            [&](Bytes in) { return temperatureModel(static_cast<double>(setting), in); });
    }
}

Floats temperatureTableModel(double setting, Floats in) {
    const BlackBody body = blackBody(kelvinOf(setting));
    const float t = strengthOf(setting);
    Floats c{};
    for (std::size_t i = 0; i < 3; ++i) {
        c[i] = clampUnit((1.0f - t) * in[i] + static_cast<float>(body.rgb[i]) * in[i] * t);
    }
    const float hi = std::max({c[0], c[1], c[2]});
    const float lo = std::min({c[0], c[1], c[2]});
    const float d = hi - lo;
    float h = 240.0f;
    float s = 0.0f;
    if (hi != lo) {
        const float l = (hi + lo) * 0.5f;
        s = l < 0.5f ? d / (hi + lo) : d / (2.0f - hi - lo);
        h = c[0] == hi   ? (c[1] - c[2]) / d
            : c[1] == hi ? (c[2] - c[0]) / d + 2.0f
                         : (c[0] - c[1]) / d + 4.0f;
        h /= 6.0f;
        if (h < 0) h += 1.0f;
        h *= 360.0f;
    }
    const float l = (std::max({in[0], in[1], in[2]}) + std::min({in[0], in[1], in[2]})) * 0.5f;
    if (s == 0) return {clampUnit(l), clampUnit(l), clampUnit(l)};
    const float q = l < 0.5f ? l * (1.0f + s) : l + s - l * s;
    const float p = 2.0f * l - q;
    const float turn = h / 360.0f;
    const auto channel = [&](float x) {
        return clampUnit(x < 0.16666667f  ? p + (q - p) * 6.0f * x
                         : x < 0.5f       ? q
                         : x < 0.6666667f ? p + (q - p) * (0.6666667f - x) * 6.0f
                                          : p);
    };
    const float red = turn + 0.33333334f;
    const float blue = turn - 0.33333334f;
    return {channel(red > 1 ? red - 1.0f : red), channel(turn),
            channel(blue < 0 ? blue + 1.0f : blue)};
}

TEST(Temperature, FollowsTheFormulaInTables) {
    for (const long setting : {0L, 9000L, 11499L, 11501L, 14000L}) {
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_temperatureAdjustment(lut, count, stride, setting);
            },
            [&](Floats in) { return temperatureTableModel(static_cast<double>(setting), in); });
    }
}

TEST(TemperatureAndTint, AtIdentityChangeNothing) {
    HostPicture picture(61, 7, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(temperatureAdjustment(picture.image(), 11500), picture.image());
    EXPECT_EQ(tintAdjustment(picture.image(), 0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
    expectEveryEntry(
        [](float* lut, unsigned long count, int stride) {
            return lut3d_temperatureAdjustment(lut, count, stride, 11500);
        },
        [](Floats in) { return in; });
    expectEveryEntry([](float* lut, unsigned long count,
                        int stride) { return lut3d_tintAdjustment(lut, count, stride, 0.0f); },
                     [](Floats in) { return in; });
}

TEST(Temperature, JumpsAcrossItsIdentity) {
    // Just below stands a bluish 14501 kelvin, just above a reddish 6599, at the same distance from
    // neutral light: a smooth passage would leave this pixel almost alone.
    const auto redOverBlue = [](long setting) {
        HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
        picture.setPixel(0, 0, {120, 130, 120, 0});
        temperatureAdjustment(picture.image(), setting);
        return picture.pixel(0, 0).red - picture.pixel(0, 0).blue;
    };
    EXPECT_LT(redOverBlue(11499), 0);
    EXPECT_GT(redOverBlue(11501), redOverBlue(11499));
    EXPECT_GE(redOverBlue(11501), 0);
}

TEST(Temperature, StandsStillFrom16400Upwards) {
    HostPicture reference = HostPicture(64, 64, 32, IMAGE_FORMAT_BGRA);
    reference.fillRandom(9);
    HostPicture at16400(reference);
    temperatureAdjustment(at16400.image(), 16400);
    for (const long setting : {16401L, 20000L, 2147483647L, LONG_MAX}) {
        HostPicture picture(reference);
        temperatureAdjustment(picture.image(), setting);
        EXPECT_EQ(picture.bytes(), at16400.bytes()) << setting;
    }
}

TEST(Temperature, TakesAnyWholeNumber) {
    // The difference of a setting near the end of the range must not wrap round to the other side
    // of the scale.
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {90, 200, 140, 0});
    temperatureAdjustment(picture.image(), LONG_MIN);
    const Bytes expected = temperatureModel(static_cast<double>(LONG_MIN), {140, 200, 90});
    EXPECT_EQ(picture.pixel(0, 0).red, expected[0]);
    EXPECT_EQ(picture.pixel(0, 0).green, expected[1]);
    EXPECT_EQ(picture.pixel(0, 0).blue, expected[2]);
}

TEST(Temperature, KeepsTheLightnessOfGreys) {
    HostPicture picture = keladjust::test::everyByte();
    temperatureAdjustment(picture.image(), 8000);
    for (unsigned i = 0; i < 256; ++i) {
        const _tagMyRGBQUAD p = picture.pixel(i, 0);
        const int sum = std::max({p.red, p.green, p.blue}) + std::min({p.red, p.green, p.blue});
        // Each of the two channels may lose one level to truncation.
        EXPECT_LE(sum, static_cast<int>(2 * i));
        EXPECT_GE(sum, static_cast<int>(2 * i) - 2);
    }
}

Bytes tintModel(float tint, Bytes in) {
    const double scaled = tint * 100.0f;  // the product in single precision
    const auto k = static_cast<long long>(std::floor(std::trunc(scaled) / 256.0));
    const long long grey = (in[1] * 601 + in[0] * 306 + in[2] * 117) >> 10;
    const auto byte = [](long long v) {
        return static_cast<int>(std::clamp<long long>(v, 0, 255));
    };
    return {byte(in[0] + (grey * k >> 8)), byte(in[1] + (grey * -k >> 8)),
            byte(in[2] + (grey * k >> 8))};
}

TEST(Tint, FollowsTheFormulaForEveryColour) {
    for (const float tint : {100.0f, 50.0f, -50.0f, -2.55f, 700.0f}) {
        expectEveryColour([&](CxImage* image) { return tintAdjustment(image, tint); },
                          [&](Bytes in) { return tintModel(tint, in); });
    }
}

TEST(Tint, FollowsTheFormulaInTables) {
    for (const float tint : {100.0f, -50.0f, -2.55f}) {
        const auto k = static_cast<float>(std::floor(std::trunc(tint * 100.0f) / 256.0f));
        const float f = k / 255.0f;
        expectEveryEntry([&](float* lut, unsigned long count,
                             int stride) { return lut3d_tintAdjustment(lut, count, stride, tint); },
                         [&](Floats in) {
                             const float grey = in[0] * 0.3f + in[1] * 0.59f + in[2] * 0.11f;
                             return Floats{clampUnit(in[0] + grey * f), clampUnit(in[1] - grey * f),
                                           clampUnit(in[2] + grey * f)};
                         });
    }
}

TEST(Tint, OfSmallPositiveSettingsChangesNothingAndOfSmallNegativeOnesDoes) {
    for (const float tint : {0.01f, 1.0f, 2.55f}) {
        HostPicture picture = keladjust::test::everyByte();
        const auto before = picture.bytes();
        tintAdjustment(picture.image(), tint);
        EXPECT_EQ(picture.bytes(), before) << tint;
    }
    for (const float tint : {-0.01f, -1.0f, -2.55f}) {
        HostPicture picture = keladjust::test::everyByte();
        tintAdjustment(picture.image(), tint);
        // k = -1: grey * -1 >> 8 is -1 for every grey above 0, grey * 1 >> 8 is 0.
        EXPECT_EQ(picture.pixel(200, 0), (_tagMyRGBQUAD{199, 200, 199, 255})) << tint;
    }
}

TEST(Tint, GivesADefinedResultForAnySetting) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(6).bytes();
    tintAdjustment(picture.image(), nan);  // a strength of 0
    EXPECT_EQ(picture.bytes(), before);

    // 1e30 saturates: k = (2^31 - 1) >> 8 = 8388607. For grey 200 the product 1677721400 >> 8 is
    // 6553599, far above the clamp, and below it for green.
    HostPicture grey(1, 1, 24, IMAGE_FORMAT_RGB);
    grey.setPixel(0, 0, {200, 200, 200, 0});
    tintAdjustment(grey.image(), 1e30f);
    EXPECT_EQ(grey.pixel(0, 0), (_tagMyRGBQUAD{255, 0, 255, 0}));
}

TEST(CreateTemperateColor, Covers30000DownwardsInStepsOf100) {
    CxImage* strip = createTemperateColor(300, 2);
    ASSERT_NE(strip, nullptr);
    EXPECT_EQ(strip->GetWidth(), 300u);
    EXPECT_EQ(strip->GetHeight(), 2u);
    EXPECT_EQ(strip->GetBpp(), 24u);
    EXPECT_EQ(strip->getFormat(), IMAGE_FORMAT_BGR);
    for (int x = 0; x < 300; ++x) {
        const BlackBody body = blackBody(30000 - 100 * x);
        for (int y = 0; y < 2; ++y) {
            const _tagMyRGBQUAD p = strip->GetPixelColor(x, y, true);
            EXPECT_EQ(p.red, static_cast<int>(body.rgb[0] * 255)) << x;
            EXPECT_EQ(p.green, static_cast<int>(body.rgb[1] * 255)) << x;
            EXPECT_EQ(p.blue, static_cast<int>(body.rgb[2] * 255)) << x;
        }
    }
    // Column 290 is 1000 K; below it the scale ends.
    for (int x = 291; x < 300; ++x) {
        EXPECT_EQ(strip->GetPixelColor(x, 0, true), strip->GetPixelColor(290, 0, true));
    }
    releaseCxImage(strip);
}

TEST(CreateTemperateColor, OfNoSizeIsEmpty) {
    for (const auto& [width, height] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-1, 5},
                                        std::pair{5, -1}, std::pair{INT_MAX, INT_MAX}}) {
        CxImage* strip = createTemperateColor(width, height);
        ASSERT_NE(strip, nullptr);
        EXPECT_EQ(strip->GetBits(), nullptr);
        EXPECT_EQ(strip->GetWidth(), 0u);
        EXPECT_EQ(strip->getFormat(), IMAGE_FORMAT_UNKNOWN);
        releaseCxImage(strip);
    }
}

}  // namespace
