// Pixels of every layout as pixels of four bytes, and back.

#include "ImageFormat/PackedSpan.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/HostPicture.h"
#include "support/InstructionSets.h"

namespace {

using keladjust::layoutOf;
using keladjust::PackedPixels;
using keladjust::PackedSpan;
using keladjust::test::everyFormat;
using keladjust::test::forEachInstructionSet;
using keladjust::test::HostPicture;
using keladjust::test::PixelFormat;

constexpr unsigned width = 211;  // some vectors of any size, and a rest

TEST(PackedSpan, HoldsWhatPixelAccessReads) {
    for (const PixelFormat format : everyFormat) {
        HostPicture picture(width, 1, format.bpp, format.format);
        picture.fillRandom(5);
        forEachInstructionSet([&](const std::string& name) {
            PackedPixels pixels;
            PackedSpan span{0, 0, width, pixels.bytes};
            loadSpan(layoutOf(*picture.image()), picture.bits(), span);
            for (unsigned x = 0; x < width; ++x) {
                const _tagMyRGBQUAD pixel = picture.pixel(x, 0);
                ASSERT_EQ(pixels.bytes[4 * x], pixel.blue) << name << ", " << format.bpp;
                ASSERT_EQ(pixels.bytes[4 * x + 1], pixel.green) << name << ", " << format.bpp;
                ASSERT_EQ(pixels.bytes[4 * x + 2], pixel.red) << name << ", " << format.bpp;
            }
        });
    }
}

TEST(PackedSpan, StoresWhatPixelAccessWrites) {
    for (const PixelFormat format : everyFormat) {
        HostPicture source(width, 1, format.bpp, format.format);
        source.fillRandom(5);
        HostPicture expected(source);
        forEachInstructionSet([&](const std::string& name) {
            HostPicture picture(source);
            PackedPixels pixels;
            PackedSpan span{0, 0, width, pixels.bytes};
            const keladjust::PixelLayout layout = layoutOf(*picture.image());
            loadSpan(layout, picture.bits(), span);
            for (unsigned x = 0; x < width; ++x) {
                std::uint8_t* const pixel = pixels.bytes + 4 * x;
                for (unsigned c = 0; c < 3; ++c) pixel[c] = static_cast<std::uint8_t>(~pixel[c]);
                _tagMyRGBQUAD whole = source.pixel(x, 0);
                whole.blue = pixel[0];
                whole.green = pixel[1];
                whole.red = pixel[2];
                expected.setPixel(x, 0, whole);
            }
            storeSpan(layout, span, picture.bits());
            ASSERT_EQ(picture.bytes(), expected.bytes()) << name << ", " << format.bpp;
            ASSERT_TRUE(picture.guardsIntact()) << name << ", " << format.bpp;
        });
    }
}

}  // namespace
