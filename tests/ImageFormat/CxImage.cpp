#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <vector>

#include "support/HostPicture.h"

namespace {

using keladjust::test::HostPicture;

void expectEmpty(const CxImage& image) {
    EXPECT_EQ(image.width, 0u);
    EXPECT_EQ(image.height, 0u);
    EXPECT_EQ(image.bpp, 0u);
    EXPECT_EQ(image.bytesPerPixel, 0u);
    EXPECT_EQ(image.effWidth, 0u);
    EXPECT_EQ(image.size, 0u);
    EXPECT_EQ(image.format, IMAGE_FORMAT_UNKNOWN);
}

unsigned char* newBuffer(std::size_t size, int fill) {
    auto* buffer = static_cast<unsigned char*>(std::malloc(size));
    std::memset(buffer, fill, size);
    return buffer;
}

TEST(CxImage, StartsEmpty) {
    CxImage image;
    expectEmpty(image);
    EXPECT_EQ(image.GetBits(), nullptr);
    EXPECT_EQ(image.ppHostBits, nullptr);
    EXPECT_TRUE(image.ownsBits);
    EXPECT_EQ(image.getFormat(), IMAGE_FORMAT_UNKNOWN);
}

TEST(CxImage, HasOnlyItsDestructorVirtual) {
    static_assert(std::has_virtual_destructor_v<CxImage>);
    static_assert(std::is_copy_constructible_v<CxImage> && std::is_copy_assignable_v<CxImage>);
    // One pointer to a table of operations and the ten members, nothing else.
    EXPECT_EQ(sizeof(CxImage), 56u);
}

TEST(CxImage, PadsRowsToFourBytes) {
    const CxImage narrow(1, 3, 24, IMAGE_FORMAT_RGB);
    EXPECT_EQ(narrow.GetEffWidth(), 4u);
    CxImage five(5, 7, 24, IMAGE_FORMAT_BGR);
    EXPECT_EQ(five.GetEffWidth(), 16u);
    EXPECT_EQ(five.GetSize(), 16 * 7);
    EXPECT_EQ(five.GetWidth(), 5u);
    EXPECT_EQ(five.GetHeight(), 7u);
    EXPECT_EQ(five.GetBpp(), 24u);
    EXPECT_EQ(five.bytesPerPixel, 3u);
    EXPECT_TRUE(five.ownsBits);
    // One bit a pixel: 33 of them take two words.
    EXPECT_EQ(CxImage(33, 1, 1, IMAGE_FORMAT_RGB).GetEffWidth(), 8u);
    EXPECT_EQ(CxImage(33, 1, 1, IMAGE_FORMAT_RGB).bytesPerPixel, 0u);
}

TEST(CxImage, CreateRefusesSizesOfZero) {
    CxImage image(4, 4, 32, IMAGE_FORMAT_BGRA);
    EXPECT_EQ(image.Create(0, 10, 24, IMAGE_FORMAT_RGB), nullptr);
    expectEmpty(image);
    EXPECT_EQ(image.GetBits(), nullptr);
    EXPECT_EQ(image.Create(10, 0, 24, IMAGE_FORMAT_RGB), nullptr);
    EXPECT_EQ(image.Create(10, 10, 0, IMAGE_FORMAT_RGB), nullptr);
    expectEmpty(image);
}

TEST(CxImage, CreateRefusesSizesBeyond32Bits) {
    CxImage image;
    EXPECT_EQ(image.Create(1u << 27, 1, 32, IMAGE_FORMAT_BGRA), nullptr);
    EXPECT_EQ(image.Create(1u << 16, 1u << 16, 8, IMAGE_FORMAT_GRAY), nullptr);
    EXPECT_EQ(image.Create(UINT_MAX, UINT_MAX, UINT_MAX, IMAGE_FORMAT_RGB), nullptr);
    EXPECT_EQ(image.GetBits(), nullptr);
    expectEmpty(image);
}

TEST(CxImage, CreateForces8BitsToGrey) {
    CxImage image;
    EXPECT_EQ(image.Create(4, 4, 8, IMAGE_FORMAT_BGRA), &image);
    EXPECT_EQ(image.getFormat(), IMAGE_FORMAT_GRAY);
}

TEST(CxImage, NewBuffersAreZeros) {
    CxImage image(7, 5, 24, IMAGE_FORMAT_RGB);
    const std::vector<unsigned char> zeros(static_cast<std::size_t>(image.GetSize()), 0);
    EXPECT_EQ(std::memcmp(image.GetBits(), zeros.data(), zeros.size()), 0);
}

TEST(CxImage, CreateOnAHostsBufferReusesItsPointer) {
    HostPicture picture(8, 8, 32, IMAGE_FORMAT_BGRA);
    unsigned char* const bits = picture.image()->GetBits();
    EXPECT_EQ(picture.image()->Create(4, 4, 24, IMAGE_FORMAT_RGB), picture.image());
    EXPECT_EQ(picture.image()->GetBits(), bits);
    EXPECT_FALSE(picture.image()->ownsBits);
    EXPECT_EQ(picture.image()->GetEffWidth(), 12u);
}

TEST(CxImage, AdoptsAHostsBuffer) {
    unsigned char pixels[16 * 2] = {};
    unsigned char* bits = pixels;
    const CxImage image(&bits, 5, 2, 24, IMAGE_FORMAT_BGR);
    EXPECT_EQ(image.pBits, pixels);
    EXPECT_EQ(image.ppHostBits, &bits);
    EXPECT_FALSE(image.ownsBits);
    EXPECT_EQ(image.size, 32u);
    EXPECT_EQ(image.format, IMAGE_FORMAT_BGR);

    CxImage without(nullptr, 5, 2, 24, IMAGE_FORMAT_BGR);
    EXPECT_EQ(without.GetBits(), nullptr);
    EXPECT_EQ(without.GetPixelColor(0, 0, true), (_tagMyRGBQUAD{0, 0, 0, 0}));
}

TEST(CxImage, DestroyLeavesAnAdoptedBufferWhereItIs) {
    HostPicture picture(8, 8, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(1);
    const auto before = picture.bytes();
    picture.image()->Destroy();
    expectEmpty(*picture.image());
    EXPECT_EQ(picture.image()->GetBits(), picture.bits());
    EXPECT_EQ(picture.bytes(), before);

    CxImage owner(2, 2, 32, IMAGE_FORMAT_BGRA);
    owner.Destroy();
    EXPECT_EQ(owner.GetBits(), nullptr);
    expectEmpty(owner);
}

TEST(CxImage, CopiesOfTheObjectAreShallow) {
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    const CxImage copy(*picture.image());
    EXPECT_EQ(copy.pBits, picture.bits());
    EXPECT_EQ(copy.ppHostBits, picture.image()->ppHostBits);
    EXPECT_FALSE(copy.ownsBits);
    CxImage assigned;
    assigned = copy;
    EXPECT_EQ(assigned.pBits, picture.bits());
    EXPECT_EQ(assigned.size, 64u);
}

TEST(CxImage, PixelsOutsideReadAsZeroAndIgnoreWrites) {
    HostPicture picture(3, 2, 32, IMAGE_FORMAT_BGRA);
    std::memset(picture.bits(), 0xFF, picture.size());
    const auto before = picture.bytes();
    constexpr _tagMyRGBQUAD none{0, 0, 0, 0};
    for (const auto& [x, y] : {std::pair{-1, 0}, std::pair{3, 0}, std::pair{0, -1}, std::pair{0, 2},
                               std::pair{INT_MIN, INT_MIN}, std::pair{INT_MAX, INT_MAX}}) {
        EXPECT_EQ(picture.image()->GetPixelColor(x, y, true), none);
        picture.image()->SetPixelColor(x, y, {1, 2, 3, 4});
    }
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_TRUE(picture.guardsIntact());

    unsigned char* bits = picture.bits();
    CxImage unknown(&bits, 3, 2, 32, IMAGE_FORMAT_UNKNOWN);
    EXPECT_EQ(unknown.GetPixelColor(0, 0, true), none);
    unknown.SetPixelColor(0, 0, none);
    EXPECT_EQ(picture.bytes(), before);
}

TEST(CxImage, GreyReadsIntoAllFourBytesAndTakesRed) {
    HostPicture picture(2, 1, 8, IMAGE_FORMAT_GRAY);
    picture.setPixel(0, 0, {200, 77, 10, 3});
    EXPECT_EQ(picture.bits()[0], 10);
    EXPECT_EQ(picture.image()->GetPixelColor(0, 0, false), (_tagMyRGBQUAD{10, 10, 10, 10}));
}

TEST(CxImage, ByteOrderFollowsTheFormat) {
    constexpr _tagMyRGBQUAD colour{11, 22, 33, 44};
    struct Case {
        unsigned bpp;
        _ImagePixelFormat format;
        std::vector<std::uint8_t> bytes;
        unsigned char alpha;
    };
    for (const Case& c :
         {Case{24, IMAGE_FORMAT_RGB, {33, 22, 11}, 0}, Case{24, IMAGE_FORMAT_BGR, {11, 22, 33}, 0},
          Case{32, IMAGE_FORMAT_RGBA, {33, 22, 11, 44}, 44},
          Case{32, IMAGE_FORMAT_BGRA, {11, 22, 33, 44}, 44}}) {
        HostPicture picture(1, 1, c.bpp, c.format);
        picture.setPixel(0, 0, colour);
        EXPECT_EQ(std::vector<std::uint8_t>(picture.bits(), picture.bits() + c.bytes.size()),
                  c.bytes);
        EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{11, 22, 33, c.alpha}));
        EXPECT_EQ(picture.image()->GetPixelColor(0, 0, false), (_tagMyRGBQUAD{11, 22, 33, 0}));
    }
}

TEST(CxImage, SixteenBitFieldsAreReadFromASignedWord) {
    HostPicture picture(2, 1, 16, IMAGE_FORMAT_RGB);
    // 1 0011 | 101010 | 00111: the top field has its sign bit set.
    const std::uint16_t word = 0b1001110101000111;
    std::memcpy(picture.bits(), &word, sizeof word);
    // Low 7; the middle keeps eight bits, two of the top among them: 0b11101010; the top is
    // 224 + 19.
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{7, 0b11101010, 224 + 19, 0}));
    const std::uint16_t positive = 0b0101100000111111;
    std::memcpy(picture.bits() + 2, &positive, sizeof positive);
    EXPECT_EQ(picture.pixel(1, 0), (_tagMyRGBQUAD{31, 0b11000001, 11, 0}));

    unsigned char* bits = picture.bits();
    CxImage exchanged(&bits, 2, 1, 16, IMAGE_FORMAT_BGR);
    EXPECT_EQ(exchanged.GetPixelColor(1, 0, true), (_tagMyRGBQUAD{11, 0b11000001, 31, 0}));
}

TEST(CxImage, SixteenBitWordsAreWrittenUnmasked) {
    HostPicture picture(1, 1, 16, IMAGE_FORMAT_RGB);
    const auto word = [&picture] {
        std::uint16_t w;
        std::memcpy(&w, picture.bits(), sizeof w);
        return w;
    };
    picture.setPixel(0, 0, {7, 42, 19, 99});
    EXPECT_EQ(word(), (19 * 64 + 42) * 32 + 7);
    picture.setPixel(0, 0, {255, 255, 255, 0});
    EXPECT_EQ(word(), ((255 * 64 + 255) * 32 + 255) & 0xFFFF);
    picture.image()->format = IMAGE_FORMAT_BGR;
    picture.setPixel(0, 0, {19, 42, 7, 0});
    EXPECT_EQ(word(), (19 * 64 + 42) * 32 + 7);
}

TEST(CxImage, OtherPairsOfFormatAndDepthReadZeroAndWriteNothing) {
    for (const auto& [bpp, format] :
         {std::pair{24u, IMAGE_FORMAT_RGBA}, std::pair{32u, IMAGE_FORMAT_RGB},
          std::pair{32u, IMAGE_FORMAT_GRAY}, std::pair{16u, IMAGE_FORMAT_BGRA},
          std::pair{12u, IMAGE_FORMAT_RGB}}) {
        HostPicture picture(3, 2, bpp, format);
        const auto before = picture.fillRandom(4).bytes();
        EXPECT_EQ(picture.pixel(1, 1), (_tagMyRGBQUAD{0, 0, 0, 0}));
        picture.setPixel(1, 1, {1, 2, 3, 4});
        EXPECT_EQ(picture.bytes(), before);
    }
}

TEST(CxImage, PixelsOfAWrappingSizeAreOutside) {
    // The rows of this image come out as 0 bytes in 32 bits; its buffer holds nothing.
    unsigned char byte = 7;
    unsigned char* bits = &byte;
    CxImage image(&bits, 1u << 30, 4, 32, IMAGE_FORMAT_BGRA);
    EXPECT_EQ(image.size, 0u);
    EXPECT_EQ(image.GetPixelColor(1000, 1, true), (_tagMyRGBQUAD{0, 0, 0, 0}));
    image.SetPixelColor(1000, 1, {1, 2, 3, 4});
    EXPECT_EQ(byte, 7);
}

TEST(CxImageCopy, OfEqualGeometryReusesTheBuffer) {
    HostPicture source(6, 4, 24, IMAGE_FORMAT_RGB);
    source.fillRandom(1);
    HostPicture target(6, 4, 24, IMAGE_FORMAT_BGR);
    target.image()->Copy(source.image());
    EXPECT_EQ(target.image()->GetBits(), target.bits());
    EXPECT_EQ(target.bytes(), source.bytes());
    EXPECT_EQ(target.image()->getFormat(), IMAGE_FORMAT_RGB);
    EXPECT_FALSE(target.image()->ownsBits);
}

TEST(CxImageCopy, TakesOwnershipOverFromTheSource) {
    CxImage source(2, 2, 32, IMAGE_FORMAT_BGRA);
    unsigned char* bits = newBuffer(16, 0);
    {
        CxImage target(&bits, 2, 2, 32, IMAGE_FORMAT_BGRA);
        target.Copy(source);
        EXPECT_TRUE(target.ownsBits);
    }  // and so frees the host's buffer, which came from malloc
    EXPECT_TRUE(source.ownsBits);
}

TEST(CxImageCopy, OfAnotherGeometryFreesTheHostsBufferAndItsPointer) {
    unsigned char* bits = newBuffer(16, 0);
    CxImage target(&bits, 2, 2, 32, IMAGE_FORMAT_BGRA);
    CxImage source(5, 3, 24, IMAGE_FORMAT_RGB);
    source.SetPixelColor(4, 2, {1, 2, 3, 0});
    target.Copy(&source);
    EXPECT_EQ(bits, nullptr);
    EXPECT_TRUE(target.ownsBits);
    EXPECT_NE(target.GetBits(), source.GetBits());
    EXPECT_EQ(target.GetEffWidth(), 16u);
    EXPECT_EQ(target.GetPixelColor(4, 2, true), (_tagMyRGBQUAD{1, 2, 3, 0}));
}

TEST(CxImageCopy, IgnoresNothingToCopy) {
    CxImage image(2, 2, 32, IMAGE_FORMAT_BGRA);
    image.SetPixelColor(1, 1, {1, 2, 3, 4});
    image.Copy(nullptr);
    image.Copy(CxImage());
    EXPECT_EQ(image.GetPixelColor(1, 1, true), (_tagMyRGBQUAD{1, 2, 3, 4}));
}

TEST(CxImageCopy, ByPointerTakesTheGeometryOfAnImageWithoutABuffer) {
    unsigned char* noBits = nullptr;
    const CxImage source(&noBits, 5, 3, 24, IMAGE_FORMAT_RGB);
    CxImage target;
    target.Copy(&source);
    EXPECT_EQ(target.GetWidth(), 5u);
    EXPECT_EQ(target.GetEffWidth(), 16u);
    EXPECT_EQ(target.GetPixelColor(4, 2, true), (_tagMyRGBQUAD{0, 0, 0, 0}));
}

// A copy of the object shares the host's buffer, which goes with the new geometry.
TEST(CxImageCopy, BetweenCopiesOfAnObjectReadsWhatItFreesBefore) {
    unsigned char* bits = newBuffer(16, 7);
    CxImage target(&bits, 2, 2, 32, IMAGE_FORMAT_BGRA);
    CxImage source(target);
    source.Create(2, 1, 32, IMAGE_FORMAT_BGRA);
    target.Copy(source);
    EXPECT_EQ(bits, nullptr);
    EXPECT_EQ(target.GetHeight(), 1u);
    EXPECT_TRUE(target.ownsBits);
    EXPECT_EQ(target.GetPixelColor(1, 0, true), (_tagMyRGBQUAD{7, 7, 7, 7}));
}

TEST(CxImageCopy, FreesAHostsBufferOnceForAllCopiesOfAnObject) {
    unsigned char* bits = newBuffer(16, 7);
    CxImage first(&bits, 2, 2, 32, IMAGE_FORMAT_BGRA);
    CxImage second(first);
    const CxImage larger(5, 3, 24, IMAGE_FORMAT_RGB);
    first.Copy(larger);
    second.Copy(larger);
    EXPECT_EQ(bits, nullptr);
    EXPECT_NE(first.GetBits(), second.GetBits());
    EXPECT_TRUE(first.ownsBits && second.ownsBits);
}

// The target loses the ownership of its buffer, and frees it all the same for another geometry.
TEST(CxImageCopy, FreesABufferOfItsOwnThatItNoLongerOwns) {
    HostPicture hosts(2, 2, 32, IMAGE_FORMAT_BGRA);
    CxImage target(2, 2, 32, IMAGE_FORMAT_BGRA);
    target.Copy(hosts.image());
    EXPECT_FALSE(target.ownsBits);
    const CxImage larger(5, 3, 24, IMAGE_FORMAT_RGB);
    target.Copy(larger);  // nothing leaks
    EXPECT_TRUE(target.ownsBits);
}

TEST(CxImageCopy, OfItselfOrOfASharedBufferIsHarmless) {
    CxImage image(2, 2, 32, IMAGE_FORMAT_BGRA);
    image.SetPixelColor(1, 1, {1, 2, 3, 4});
    image.Copy(image);
    HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
    CxImage shared(*picture.image());
    shared.Copy(picture.image());
    EXPECT_EQ(image.GetPixelColor(1, 1, true), (_tagMyRGBQUAD{1, 2, 3, 4}));
    EXPECT_EQ(shared.GetBits(), picture.bits());
}

}  // namespace
