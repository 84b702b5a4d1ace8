#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "support/HostPicture.h"

namespace {

using keladjust::test::everyFormat;
using keladjust::test::HostPicture;
using keladjust::test::PixelFormat;

struct Planes {
    CxImage first;
    CxImage second;
    CxImage third;
    CxImage alpha;

    std::array<int, 4> at(int x, int y) {
        return {first.GetPixelColor(x, y, true).red, second.GetPixelColor(x, y, true).red,
                third.GetPixelColor(x, y, true).red, alpha.GetPixelColor(x, y, true).red};
    }
};

bool splitRgb(CxImage* image, Planes& p) {
    return image->SplitRGBA(&p.first, &p.second, &p.third, &p.alpha);
}
bool splitHsl(CxImage* image, Planes& p) {
    return image->SplitHSLA(&p.first, &p.second, &p.third, &p.alpha);
}

TEST(Split, GivesTheChannelsThatPixelAccessReads) {
    for (const PixelFormat format : everyFormat) {
        if (format.format == IMAGE_FORMAT_GRAY) continue;
        HostPicture picture(2101, 3, format.bpp, format.format);
        picture.fillRandom(5);
        Planes rgb;
        Planes hsl;
        ASSERT_TRUE(splitRgb(picture.image(), rgb));
        ASSERT_TRUE(splitHsl(picture.image(), hsl));
        EXPECT_EQ(rgb.first.GetBpp(), 8u);
        EXPECT_EQ(rgb.first.getFormat(), IMAGE_FORMAT_GRAY);
        for (unsigned y = 0; y < 3; ++y) {
            for (unsigned x = 0; x < 2101; ++x) {
                const _tagMyRGBQUAD p = picture.pixel(x, y);
                const _tagMyRGBQUAD h = CxImage::RGBtoHSL(p);
                const auto ix = static_cast<int>(x);
                const auto iy = static_cast<int>(y);
                ASSERT_EQ(rgb.at(ix, iy), (std::array<int, 4>{p.red, p.green, p.blue, p.alpha}));
                ASSERT_EQ(hsl.at(ix, iy), (std::array<int, 4>{h.red, h.green, h.blue, p.alpha}));
            }
        }
    }
}

TEST(Split, OfAGreyPictureLeavesThePlanesUntouched) {
    HostPicture grey(4, 4, 8, IMAGE_FORMAT_GRAY);
    Planes planes;
    planes.first.Create(2, 2, 8, IMAGE_FORMAT_GRAY);
    EXPECT_FALSE(splitRgb(grey.image(), planes));
    EXPECT_FALSE(splitHsl(grey.image(), planes));
    EXPECT_EQ(planes.first.GetWidth(), 2u);
    CxImage empty;
    EXPECT_FALSE(splitRgb(&empty, planes));
    HostPicture unknown(4, 4, 32, IMAGE_FORMAT_UNKNOWN);
    EXPECT_FALSE(splitRgb(unknown.image(), planes));
    EXPECT_EQ(planes.first.GetWidth(), 2u);
}

TEST(Split, NeedsThreePlanesAndTakesAFourth) {
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(6);
    Planes p;
    EXPECT_FALSE(picture.image()->SplitRGBA(nullptr, nullptr, nullptr, &p.alpha));
    EXPECT_FALSE(picture.image()->SplitRGBA(&p.first, nullptr, &p.third, nullptr));
    EXPECT_FALSE(picture.image()->SplitHSLA(nullptr, &p.second, &p.third, nullptr));
    EXPECT_TRUE(picture.image()->SplitRGBA(&p.first, &p.second, &p.third, nullptr));
    EXPECT_EQ(p.second.GetPixelColor(2, 3, true).red, picture.pixel(2, 3).green);
}

TEST(Split, OfNoRowsSucceeds) {
    unsigned char byte = 0;
    unsigned char* bits = &byte;
    CxImage flat(&bits, 4, 0, 32, IMAGE_FORMAT_BGRA);
    Planes planes;
    EXPECT_TRUE(splitRgb(&flat, planes));
    EXPECT_EQ(planes.first.GetBits(), nullptr);
}

TEST(Split, RefusesAPlaneOnABufferThatIsTooSmall) {
    HostPicture picture(8, 8, 32, IMAGE_FORMAT_BGRA);
    HostPicture small(4, 4, 8, IMAGE_FORMAT_GRAY);
    Planes p;
    EXPECT_FALSE(picture.image()->SplitRGBA(small.image(), &p.second, &p.third, nullptr));
    EXPECT_TRUE(small.guardsIntact());
    HostPicture large(8, 9, 8, IMAGE_FORMAT_GRAY);
    picture.fillRandom(3);
    EXPECT_TRUE(picture.image()->SplitRGBA(large.image(), &p.second, &p.third, nullptr));
    EXPECT_EQ(large.bits()[0], picture.pixel(0, 0).red);
    EXPECT_TRUE(large.guardsIntact());
}

TEST(Combine, PutsAPictureTogetherAgain) {
    for (const PixelFormat format : everyFormat) {
        if (format.format == IMAGE_FORMAT_GRAY) continue;
        HostPicture picture(37, 5, format.bpp, format.format);
        picture.fillRandom(7);
        Planes planes;
        ASSERT_TRUE(splitRgb(picture.image(), planes));
        HostPicture joined(37, 5, format.bpp, format.format);
        EXPECT_TRUE(joined.image()->Combine(&planes.first, &planes.second, &planes.third,
                                            &planes.alpha, 0));
        HostPicture expected(37, 5, format.bpp, format.format);
        for (unsigned y = 0; y < 5; ++y) {
            for (unsigned x = 0; x < 37; ++x) expected.setPixel(x, y, picture.pixel(x, y));
        }
        EXPECT_EQ(joined.bytes(), expected.bytes());
        EXPECT_TRUE(joined.guardsIntact());
    }
}

TEST(Combine, ConvertsOnlyInColourSpace1) {
    CxImage a(2, 1, 8, IMAGE_FORMAT_GRAY);
    CxImage b(2, 1, 8, IMAGE_FORMAT_GRAY);
    CxImage c(2, 1, 8, IMAGE_FORMAT_GRAY);
    a.SetPixelColor(0, 0, {0, 0, 0, 0});
    b.SetPixelColor(0, 0, {255, 255, 255, 0});
    c.SetPixelColor(0, 0, {128, 128, 128, 0});
    CxImage image(1, 1, 24, IMAGE_FORMAT_RGB);
    EXPECT_TRUE(image.Combine(&a, &b, &c, nullptr, 1));
    EXPECT_EQ(image.GetWidth(), 2u);
    EXPECT_EQ(image.GetPixelColor(0, 0, true), (_tagMyRGBQUAD{1, 1, 254, 0}));  // red
    for (const int space : {0, 2, -1}) {
        EXPECT_TRUE(image.Combine(&a, &b, &c, nullptr, space));
        EXPECT_EQ(image.GetPixelColor(0, 0, true), (_tagMyRGBQUAD{128, 255, 0, 0})) << space;
    }
}

TEST(Combine, WithoutAnAlphaPlaneKeepsTheImagesOwn) {
    CxImage plane(2, 1, 8, IMAGE_FORMAT_GRAY);
    HostPicture host(2, 1, 32, IMAGE_FORMAT_BGRA);
    host.setPixel(1, 0, {9, 9, 9, 77});
    EXPECT_TRUE(host.image()->Combine(&plane, &plane, &plane, nullptr, 0));
    EXPECT_EQ(host.pixel(1, 0), (_tagMyRGBQUAD{0, 0, 0, 77}));
    CxImage owner(2, 1, 32, IMAGE_FORMAT_BGRA);
    owner.SetPixelColor(1, 0, {9, 9, 9, 77});
    EXPECT_TRUE(owner.Combine(&plane, &plane, &plane, nullptr, 0));
    EXPECT_EQ(owner.GetPixelColor(1, 0, true), (_tagMyRGBQUAD{0, 0, 0, 0})) << "a new buffer";
}

TEST(Combine, RefusesMissingPlanesAndBuffersThatAreTooSmall) {
    CxImage plane(3, 3, 8, IMAGE_FORMAT_GRAY);
    CxImage image(3, 3, 24, IMAGE_FORMAT_RGB);
    EXPECT_FALSE(image.Combine(nullptr, &plane, &plane, nullptr, 0));
    EXPECT_FALSE(image.Combine(&plane, nullptr, &plane, nullptr, 0));
    EXPECT_FALSE(image.Combine(&plane, &plane, nullptr, nullptr, 0));
    HostPicture small(2, 2, 24, IMAGE_FORMAT_RGB);
    EXPECT_FALSE(small.image()->Combine(&plane, &plane, &plane, nullptr, 0));
    EXPECT_TRUE(small.guardsIntact());
}

TEST(Combine, IntoAnImageWithoutADepthHasNothingToWrite) {
    CxImage plane(3, 3, 8, IMAGE_FORMAT_GRAY);
    CxImage empty;
    EXPECT_TRUE(empty.Combine(&plane, &plane, &plane, nullptr, 0));
    EXPECT_EQ(empty.GetBits(), nullptr);
}

// Planes that do not belong together are a programming error, reported in release builds, too.
// The report's wording about them is the platform's; these texts are the library's.
TEST(CombineDeathTest, ReportsPlanesThatDiffer) {
    using ::testing::HasSubstr;
    CxImage plane(3, 3, 8, IMAGE_FORMAT_GRAY);
    CxImage wider(4, 3, 8, IMAGE_FORMAT_GRAY);
    CxImage higher(3, 4, 8, IMAGE_FORMAT_GRAY);
    CxImage deeper(3, 3, 24, IMAGE_FORMAT_RGB);
    CxImage image(3, 3, 24, IMAGE_FORMAT_RGB);
    const auto without = ::testing::AllOf(
        HasSubstr("Source\\ImageFormat"), HasSubstr("622"),
        HasSubstr("(rw == gw && gw == bw) && (rh == gh && gh == bh) && (r->GetBpp() == g->GetBpp() "
                  "&& g->GetBpp() == b->GetBpp() && b->GetBpp() == 8)"));
    EXPECT_DEATH(image.Combine(&plane, &wider, &plane, nullptr, 0), without);
    EXPECT_DEATH(image.Combine(&plane, &plane, &higher, nullptr, 0), without);
    EXPECT_DEATH(image.Combine(&deeper, &deeper, &deeper, nullptr, 0), without);
    const auto with = ::testing::AllOf(
        HasSubstr("Source\\ImageFormat"), HasSubstr("617"),
        HasSubstr("(rw == gw && gw == bw && bw == aw) && (rh == gh && gh == bh && bh == ah) && "
                  "(r->GetBpp() == g->GetBpp() && g->GetBpp() == b->GetBpp() && "
                  "b->GetBpp() == a->GetBpp() && a->GetBpp() == 8)"));
    EXPECT_DEATH(image.Combine(&plane, &plane, &plane, &wider, 0), with);
}

}  // namespace
