#include "models/dehaze/Dehaze.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "filters/dehaze/DehazeRows.h"
#include "support/HostPicture.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::meanModel;

struct Freed {
    void operator()(unsigned char* map) const { std::free(map); }
};
using OwnedMap = std::unique_ptr<unsigned char, Freed>;

std::vector<std::uint8_t> randomMap(int size, std::uint32_t seed) {
    std::mt19937 generator(seed);
    std::vector<std::uint8_t> map(static_cast<std::size_t>(size));
    for (std::uint8_t& byte : map) byte = static_cast<std::uint8_t>(generator() >> 24);
    return map;
}

TEST(MeanFilter, IsTheMeanOfTheCroppedWindow) {
    constexpr std::pair<int, int> sizes[] = {{1, 1},   {1, 40},  {40, 1},  {2, 3},
                                             {7, 7},   {8, 8},   {14, 15}, {15, 14},
                                             {16, 16}, {61, 33}, {300, 9}};
    for (const auto& [width, height] : sizes) {
        const auto source = randomMap(width * height, 3);
        std::vector<std::uint8_t> means(source.size() + 1, 0xA5);
        meanFilter15(source.data(), means.data(), width, height);
        EXPECT_EQ(means.back(), 0xA5);
        means.pop_back();
        EXPECT_EQ(means, meanModel(source, width, height)) << width << " x " << height;
    }
}

// Every sum that a window of every size can have is divided exactly: a mean that is off by one
// would make the veil flicker along contours.
TEST(MeanFilter, TruncatesExactlyForEverySum) {
    for (int sum = 0; sum <= 255 * 225; sum += 7) {
        std::vector<std::uint8_t> source(225);
        for (std::size_t i = 0; i < 225; ++i) {
            source[i] = static_cast<std::uint8_t>(sum / 225 + (static_cast<int>(i) < sum % 225));
        }
        std::vector<std::uint8_t> means(225);
        meanFilter15(source.data(), means.data(), 15, 15);
        ASSERT_EQ(means[112], sum / 225) << sum;
    }
}

TEST(MeanFilter, KeepsFlatMapsUpToTheBrightest) {
    for (const int value : {0, 1, 254, 255}) {
        const std::vector<std::uint8_t> source(50 * 40, static_cast<std::uint8_t>(value));
        std::vector<std::uint8_t> means(source.size());
        meanFilter15(source.data(), means.data(), 50, 40);
        EXPECT_EQ(means, source);
    }
}

TEST(MeanFilter, IgnoresMissingAndEmptyMaps) {
    const std::uint8_t source = 5;
    std::uint8_t destination = 9;
    meanFilter15(nullptr, &destination, 1, 1);
    meanFilter15(&source, nullptr, 1, 1);
    meanFilter15(&source, &destination, 1, 0);
    meanFilter15(&source, &destination, 0, 1);
    meanFilter15(&source, &destination, -1, -1);
    EXPECT_EQ(destination, 9);
    meanFilter15(&source, &destination, 1, 1);
    EXPECT_EQ(destination, 5);  // a window of one pixel
}

TEST(Veil, IsTheSmallerOfTheMinimumAndTheScaledMean) {
    const std::vector<std::uint8_t> minimum = {0, 10, 100, 200, 255, 40};
    const std::vector<std::uint8_t> mean = {100, 100, 100, 100, 255, 99};
    const auto veilAt = [&](float factor) {
        const OwnedMap veil(estimateVeil(minimum.data(), mean.data(), 3, 2, factor));
        return std::vector<std::uint8_t>(veil.get(), veil.get() + 6);
    };
    EXPECT_EQ(veilAt(0.5f), (std::vector<std::uint8_t>{0, 10, 50, 50, 127, 40}));
    EXPECT_EQ(veilAt(1000.0f), minimum);
    EXPECT_EQ(veilAt(std::numeric_limits<float>::infinity()), minimum);
    EXPECT_EQ(veilAt(std::numeric_limits<float>::quiet_NaN()), std::vector<std::uint8_t>(6));
    EXPECT_EQ(veilAt(-0.5f), std::vector<std::uint8_t>(6));
}

TEST(Veil, OfMissingMapsIsNone) {
    const std::uint8_t map = 1;
    EXPECT_EQ(estimateVeil(nullptr, &map, 1, 1, 0.5f), nullptr);
    EXPECT_EQ(estimateVeil(&map, nullptr, 1, 1, 0.5f), nullptr);
    const OwnedMap empty(estimateVeil(&map, &map, 0, -3, 0.5f));
    EXPECT_NE(empty, nullptr);
}

TEST(MapMaximum, IsTheLargestByteWhereverItStands) {
    std::vector<std::uint8_t> map(100 * 90, 17);
    EXPECT_EQ(mapMaximum(map.data(), 100, 90), 17);
    map.back() = 18;
    EXPECT_EQ(mapMaximum(map.data(), 100, 90), 18);
    map[4096] = 255;
    EXPECT_EQ(mapMaximum(map.data(), 100, 90), 255);
    map.front() = 255;
    EXPECT_EQ(mapMaximum(map.data(), 100, 90), 255);
    EXPECT_EQ(mapMaximum(map.data(), 0, 90), 0);
    EXPECT_EQ(mapMaximum(map.data(), 100, -1), 0);
    EXPECT_EQ(mapMaximum(nullptr, 100, 90), 0);
}

_tagMyRGBQUAD flatDehazed(_tagMyRGBQUAD colour, float amount) {
    HostPicture picture(20, 20, 32, IMAGE_FORMAT_BGRA);
    for (unsigned i = 0; i < 400; ++i) picture.setPixel(i % 20, i / 20, colour);
    EXPECT_EQ(dehaze(picture.image(), amount), picture.image());
    for (unsigned i = 0; i < 400; ++i)
        EXPECT_EQ(picture.pixel(i % 20, i / 20), picture.pixel(0, 0));
    return picture.pixel(0, 0);
}

TEST(Dehaze, TakesAWeakVeilOffADarkPicture) {
    // m = 51: k = 0.32, veil 16, light (51 + 102) / 2 = 76.5, kept 0.7908.
    EXPECT_EQ(flatDehazed({51, 64, 102, 7}, 100.0f), (_tagMyRGBQUAD{44, 60, 108, 7}));
}

TEST(Dehaze, CapsTheVeilAtNineTenths) {
    // m = 144: 0.9035 is capped: veil 129, light (144 + 200) / 2 = 172, kept 0.25.
    EXPECT_EQ(flatDehazed({144, 150, 200, 7}, 100.0f), (_tagMyRGBQUAD{60, 84, 255, 7}));
    // m = 143: 0.8973 is not: veil 128, light 171.5, kept 0.2536.
    EXPECT_EQ(flatDehazed({143, 150, 200, 7}, 100.0f), (_tagMyRGBQUAD{59, 86, 255, 7}));
    EXPECT_EQ(flatDehazed({144, 150, 200, 7}, 300.0f), (_tagMyRGBQUAD{60, 84, 255, 7}));
}

TEST(Dehaze, OfOnePixelJudgesByThatPixel) {
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_BGR);
    picture.setPixel(0, 0, {51, 64, 102, 0});
    dehaze(picture.image(), 100.0f);
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{44, 60, 108, 0}));
}

TEST(Dehaze, KeepsABlackPictureBlack) {
    EXPECT_EQ(flatDehazed({0, 0, 0, 200}, 100.0f), (_tagMyRGBQUAD{0, 0, 0, 200}));
}

TEST(Dehaze, NegativeSettingsLayAnEvenVeil) {
    EXPECT_EQ(flatDehazed({0, 100, 255, 9}, -100.0f), (_tagMyRGBQUAD{127, 177, 255, 9}));
    EXPECT_EQ(flatDehazed({0, 100, 254, 9}, -25.0f), (_tagMyRGBQUAD{51, 131, 254, 9}));
}

TEST(Dehaze, AtZeroChangesNothing) {
    HostPicture picture(20, 9, 24, IMAGE_FORMAT_RGB);
    const auto before = picture.fillRandom(2).bytes();
    EXPECT_EQ(dehaze(picture.image(), -0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
}

TEST(MeanFilter, RefusesMapsThatOverlap) {
    std::vector<std::uint8_t> map(40 * 30);
    for (std::size_t i = 0; i < map.size(); ++i) map[i] = static_cast<std::uint8_t>(i * 7);
    const std::vector<std::uint8_t> before = map;
    meanFilter15(map.data(), map.data(), 40, 30);
    EXPECT_EQ(map, before);
    meanFilter15(map.data(), map.data() + 40, 40, 29);
    EXPECT_EQ(map, before);
    meanFilter15(map.data() + 20, map.data(), 40, 29);
    EXPECT_EQ(map, before);
    // Side by side they do not overlap.
    meanFilter15(map.data(), map.data() + 600, 20, 30);
    EXPECT_NE(map, before);
    EXPECT_TRUE(std::equal(map.begin(), map.begin() + 600, before.begin()));
}

// What is left of a channel, by the divisions of the formula.
std::uint8_t unveiledModel(int channel, int depth, float light) {
    const float kept = 1.0f - static_cast<float>(depth) / light;
    return static_cast<std::uint8_t>(std::min(255.0f, static_cast<float>(channel - depth) / kept));
}

// Every light and depth that there are, and every channel that is not below the depth.
TEST(Unveil, DividesAsTheFormulaDoes) {
    constexpr float factor = 0.9f;
    constexpr std::size_t count = 256;
    const std::vector<std::uint8_t> means(count, 255);
    for (int twiceLight = 1; twiceLight <= 510; ++twiceLight) {
        const float light = static_cast<float>(twiceLight) * 0.5f;
        const int deepest = static_cast<int>(factor * std::min(255.0f, light));
        for (int depth = 0; depth <= deepest; ++depth) {
            std::vector<std::uint8_t> pixels(4 * count);
            for (std::size_t i = 0; i < count; ++i) {
                const auto channel =
                    static_cast<std::uint8_t>(std::max<std::size_t>(i, std::size_t(depth)));
                pixels[4 * i] = static_cast<std::uint8_t>(depth);
                pixels[4 * i + 1] = channel;
                pixels[4 * i + 2] = channel;
            }
            std::vector<std::uint8_t> unveiled = pixels;
            keladjust::unveil(unveiled.data(), count, 4, means.data(), {factor, light});
            for (std::size_t i = 0; i < pixels.size(); ++i) {
                if (i % 4 != 3) pixels[i] = unveiledModel(pixels[i], depth, light);
            }
            ASSERT_EQ(unveiled, pixels) << light << ", " << depth;
        }
    }
}

}  // namespace
