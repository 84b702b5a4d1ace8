#include "filters/blur/StackBlur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "models/blur/StackBlur.h"
#include "support/HostPicture.h"
#include "support/InstructionSets.h"

namespace {

using keladjust::stackBlurScale;
using keladjust::StackBlurScale;
using keladjust::test::blurModel;
using keladjust::test::blurPassModel;
using keladjust::test::HostPicture;

_ImagePixelFormat formatFor(int bytesPerPixel) {
    return bytesPerPixel == 4   ? IMAGE_FORMAT_BGRA
           : bytesPerPixel == 3 ? IMAGE_FORMAT_BGR
                                : IMAGE_FORMAT_GRAY;
}

TEST(StackBlur, ScalesAsThePublishedTablesDo) {
    constexpr unsigned firstMultipliers[] = {512, 512, 456, 512, 328, 456, 335, 512,
                                             405, 328, 271, 456, 388, 335, 292, 512};
    constexpr unsigned firstShifts[] = {9,  11, 12, 13, 13, 14, 14, 15,
                                        15, 15, 15, 16, 16, 16, 16, 17};
    constexpr unsigned lastMultipliers[] = {267, 265, 263, 261, 259};
    for (unsigned radius = 0; radius < 16; ++radius) {
        EXPECT_EQ(stackBlurScale(radius).multiplier, firstMultipliers[radius]) << radius;
        EXPECT_EQ(stackBlurScale(radius).shift, firstShifts[radius]) << radius;
    }
    for (unsigned radius = 250; radius < 255; ++radius) {
        EXPECT_EQ(stackBlurScale(radius).multiplier, lastMultipliers[radius - 250]) << radius;
        EXPECT_EQ(stackBlurScale(radius).shift, 24u) << radius;
    }
    for (unsigned radius = 0; radius < 255; ++radius) {
        const StackBlurScale scale = stackBlurScale(radius);
        const double weights = (radius + 1.0) * (radius + 1.0);
        const double error = scale.multiplier / static_cast<double>(1 << scale.shift) * weights - 1;
        EXPECT_LT(error, 0.004) << radius;  // what the tables promise
        EXPECT_GE(error, 0.0) << radius;
    }
}

// Lines shorter and longer than the kernel, than a stripe of columns and than a tile of rows.
TEST(StackBlur, IsTheConvolutionWithATriangle) {
    constexpr std::pair<int, int> sizes[] = {{1, 1},   {1, 9},    {9, 1},    {2, 3},   {5, 7},
                                             {37, 19}, {140, 21}, {23, 150}, {600, 17}};
    for (const int bytes : {1, 3, 4}) {
        for (const auto& [width, height] : sizes) {
            for (const int radius : {1, 2, 3, 7, 50, 126, 253, 254}) {
                HostPicture picture(static_cast<unsigned>(width), static_cast<unsigned>(height),
                                    static_cast<unsigned>(bytes * 8), formatFor(bytes));
                picture.fillRandom(static_cast<std::uint32_t>(radius));
                HostPicture expected(picture);
                stackBlur(picture.bits(), width, height, bytes, radius);
                blurModel(expected.bits(), width, height, bytes, radius);
                ASSERT_EQ(picture.bytes(), expected.bytes())
                    << width << " x " << height << ", " << bytes << " bytes, radius " << radius;
                ASSERT_TRUE(picture.guardsIntact());
            }
        }
    }
}

// Radii about the one from which running differences need more than 16 bits.
TEST(StackBlur, IsTheSameOnEveryInstructionSet) {
    for (const int bytes : {1, 3, 4}) {
        for (const int radius : {1, 2, 127, 128, 254}) {
            HostPicture original(77, 90, static_cast<unsigned>(bytes * 8), formatFor(bytes));
            original.fillRandom(static_cast<std::uint32_t>(radius));
            // The largest differences there are.
            std::fill_n(original.bits(), original.size() / 2, std::uint8_t{255});
            HostPicture expected(original);
            blurModel(expected.bits(), 77, 90, bytes, radius);
            keladjust::test::forEachInstructionSet([&](const std::string& name) {
                HostPicture picture(original);
                stackBlur(picture.bits(), 77, 90, bytes, radius);
                EXPECT_EQ(picture.bytes(), expected.bytes())
                    << name << ", " << bytes << " bytes, radius " << radius;
                EXPECT_TRUE(picture.guardsIntact()) << name;
            });
        }
    }
}

// Bands that are lower than the blur reaches, so that one sees rows of several others.
TEST(StackBlur, DoesNotDependOnTheNumberOfThreads) {
    for (const int radius : {1, 3, 60, 254}) {
        HostPicture picture(640, 1200, 32, IMAGE_FORMAT_BGRA);
        picture.fillRandom(12);
        setMaxThreads(1);
        HostPicture alone(picture);
        stackBlur(alone.bits(), 640, 1200, 4, radius);
        for (const int threads : {2, 3, 16}) {
            setMaxThreads(threads);
            HostPicture shared(picture);
            stackBlur(shared.bits(), 640, 1200, 4, radius);
            EXPECT_TRUE(shared.bytes() == alone.bytes()) << radius << ", " << threads;
        }
    }
    setMaxThreads(0);
}

TEST(StackBlur, RunsTheOnePassThatIsAskedFor) {
    for (const int pass : {0, 1, 2, 3, -1}) {
        HostPicture picture(21, 14, 24, IMAGE_FORMAT_BGR);
        picture.fillRandom(8);
        HostPicture expected(picture);
        stackBlurPass(picture.bits(), 21, 14, 3, 4, pass);
        blurPassModel(expected.bits(), 21, 14, 3, 4, pass);
        EXPECT_EQ(picture.bytes(), expected.bytes()) << pass;
    }
}

TEST(StackBlur, SpreadsOneSampleByHand) {
    // Radius 2: weights 1 2 3 2 1, of which 90 takes 90, 180, 270; x 456 >> 12.
    std::vector<std::uint8_t> line = {0, 0, 0, 0, 90, 0, 0, 0};
    stackBlurPass(line.data(), 8, 1, 1, 2, 1);
    EXPECT_EQ(line, (std::vector<std::uint8_t>{0, 0, 10, 20, 30, 20, 10, 0}));
}

TEST(StackBlur, KeepsALineOfOneSampleAndEveryFlatPicture) {
    for (int radius = 1; radius <= 254; ++radius) {
        for (int value = 0; value < 256; ++value) {
            auto sample = static_cast<std::uint8_t>(value);
            std::uint8_t row[4] = {sample, 1, 2, 3};
            stackBlur(row, 1, 1, 1, radius);
            ASSERT_EQ(row[0], sample) << radius;
        }
    }
    for (const int radius : {1, 9, 254}) {
        HostPicture picture(40, 30, 24, IMAGE_FORMAT_BGR);
        std::fill_n(picture.bits(), picture.size(), std::uint8_t{201});
        const auto before = picture.bytes();
        stackBlur(picture.bits(), 40, 30, 3, radius);
        EXPECT_EQ(picture.bytes(), before) << radius;
    }
}

TEST(StackBlur, DrivesTheColourOfClearPixelsToZeroAndKeepsAlpha) {
    HostPicture picture(20, 10, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(4);
    for (unsigned x = 0; x < 20; ++x) {
        for (unsigned y = 0; y < 10; ++y) {
            _tagMyRGBQUAD p = picture.pixel(x, y);
            p.alpha = static_cast<std::uint8_t>(x < 10 ? 0 : x);
            picture.setPixel(x, y, p);
        }
    }
    stackBlur(picture.bits(), 20, 10, 4, 3);
    for (unsigned x = 0; x < 20; ++x) {
        for (unsigned y = 0; y < 10; ++y) {
            const _tagMyRGBQUAD p = picture.pixel(x, y);
            const int alpha = x < 10 ? 0 : static_cast<int>(x);
            EXPECT_EQ(p.alpha, alpha);
            EXPECT_LE(std::max({p.red, p.green, p.blue}), alpha);
        }
    }
}

TEST(StackBlur, IgnoresWhatItCannotBlur) {
    HostPicture picture(12, 9, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(3).bytes();
    for (const int radius : {0, 255, -1, 100000}) {
        stackBlur(picture.bits(), 12, 9, 4, radius);
        stackBlurPass(picture.bits(), 12, 9, 4, radius, 1);
    }
    for (const int bytes : {2, 0, -4, 5, 8}) stackBlur(picture.bits(), 6, 4, bytes, 2);
    stackBlur(picture.bits(), 0, 9, 4, 2);
    stackBlur(picture.bits(), 12, -9, 4, 2);
    stackBlur(nullptr, 12, 9, 4, 2);
    EXPECT_EQ(picture.bytes(), before);
}

}  // namespace
