// Images, planes and maps that are made, short of each of their allocations: they are there and
// right, or they are not.

#include <algorithm>
#include <memory>
#include <vector>

#include "allocation/Allocations.h"
#include "support/HostPicture.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::Struck;
using keladjust::test::withEveryFault;
using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(CxImage& image) {
    return image.GetBits() == nullptr ? Bytes()
                                      : Bytes(image.GetBits(), image.GetBits() + image.GetSize());
}

void expectEmpty(CxImage& image) {
    EXPECT_EQ(image.GetBits(), nullptr);
    EXPECT_EQ(image.GetWidth(), 0u);
    EXPECT_EQ(image.GetHeight(), 0u);
    EXPECT_EQ(image.GetSize(), 0);
    EXPECT_EQ(image.getFormat(), IMAGE_FORMAT_UNKNOWN);
}

struct Release {
    void operator()(CxImage* image) const { releaseCxImage(image); }
};
using Image = std::unique_ptr<CxImage, Release>;

TEST(ObjectsShortOfMemory, AdoptingImagesAreThereOrNot) {
    struct Call {
        void call() { image.reset(createCxImage(&bits, 1, 1, 32, IMAGE_FORMAT_BGRA)); }
        void check(Struck struck) const {
            EXPECT_EQ(image == nullptr, struck);
            if (image != nullptr) {
                EXPECT_EQ(image->GetBits(), pixel);
            }
        }
        unsigned char pixel[4] = {};
        unsigned char* bits = pixel;
        Image image;
    };
    withEveryFault("createCxImage", [] { return Call(); });
}

TEST(ObjectsShortOfMemory, ImagesWithoutAFileAreThereOrNot) {
    struct Call {
        void call() { image.reset(createCxImageFromFile("no-such-picture.png")); }
        void check(Struck struck) const {
            EXPECT_EQ(image == nullptr, struck);
            if (image != nullptr) expectEmpty(*image);
        }
        Image image;
    };
    withEveryFault("createCxImageFromFile", [] { return Call(); });
}

TEST(ObjectsShortOfMemory, ImagesOfTheirOwnAreWholeOrEmpty) {
    struct Call {
        void call() { made = image.Create(7, 5, 24, IMAGE_FORMAT_RGB); }
        void check(Struck struck) {
            EXPECT_EQ(made == nullptr, struck);
            if (struck) {
                expectEmpty(image);
            } else {
                EXPECT_EQ(bytesOf(image), Bytes(24 * 5));
            }
        }
        CxImage image;
        void* made = nullptr;
    };
    withEveryFault("CxImage::Create", [] { return Call(); });
}

TEST(ObjectsShortOfMemory, CopiesAreWholeOrEmpty) {
    static HostPicture source(7, 5, 24, IMAGE_FORMAT_RGB);
    source.fillRandom(1);
    struct Call {
        void call() { image.Copy(source.image()); }
        void check(Struck struck) {
            if (struck) {
                expectEmpty(image);
            } else {
                EXPECT_EQ(bytesOf(image), source.bytes());
            }
        }
        CxImage image;
    };
    withEveryFault("CxImage::Copy", [] { return Call(); });
}

/// The planes of a picture, and the picture put together from them again.
struct Planes {
    explicit Planes(const HostPicture& source) : picture(source) {}

    HostPicture picture;
    CxImage planes[4];
    bool done = false;
};

template <bool (CxImage::*split)(CxImage*, CxImage*, CxImage*, CxImage*)>
void expectSplits(const char* name) {
    HostPicture source(7, 5, 32, IMAGE_FORMAT_BGRA);
    source.fillRandom(1);
    CxImage expected[4];
    ASSERT_TRUE((source.image()->*split)(&expected[0], &expected[1], &expected[2], &expected[3]));
    struct Call : Planes {
        Call(const HostPicture& whole, CxImage* expectedPlanes)
            : Planes(whole), before(whole.bytes()), expected(expectedPlanes) {}
        void call() {
            done = (picture.image()->*split)(&planes[0], &planes[1], &planes[2], &planes[3]);
        }
        void check(Struck struck) {
            EXPECT_EQ(done, !struck);
            EXPECT_EQ(picture.bytes(), before);
            for (int i = 0; done && i < 4; ++i) {
                EXPECT_EQ(bytesOf(planes[i]), bytesOf(expected[i])) << i;
            }
        }
        Bytes before;
        CxImage* expected;
    };
    withEveryFault(name, [&] { return Call(source, expected); });
}

TEST(ObjectsShortOfMemory, PicturesAreSplitWhollyOrNot) {
    expectSplits<&CxImage::SplitRGBA>("CxImage::SplitRGBA");
    expectSplits<&CxImage::SplitHSLA>("CxImage::SplitHSLA");
}

TEST(ObjectsShortOfMemory, PicturesArePutTogetherWhollyOrNot) {
    HostPicture source(7, 5, 32, IMAGE_FORMAT_BGRA);
    source.fillRandom(1);
    static CxImage planes[4];
    ASSERT_TRUE(source.image()->SplitRGBA(&planes[0], &planes[1], &planes[2], &planes[3]));
    CxImage whole;
    ASSERT_TRUE(whole.Combine(&planes[0], &planes[1], &planes[2], &planes[3], 0));
    struct Call {
        explicit Call(Bytes bytes) : expected(std::move(bytes)) {}
        void call() { done = image.Combine(&planes[0], &planes[1], &planes[2], &planes[3], 0); }
        void check(Struck struck) {
            EXPECT_EQ(done, !struck);
            if (done) {
                EXPECT_EQ(bytesOf(image), expected);
            }
        }
        CxImage image;
        Bytes expected;
        bool done = false;
    };
    withEveryFault("CxImage::Combine", [&] { return Call(bytesOf(whole)); });
}

TEST(ObjectsShortOfMemory, StripsOfBlackBodyColoursAreWholeEmptyOrNotThere) {
    const Image whole(createTemperateColor(200, 3));
    ASSERT_NE(whole, nullptr);
    struct Call {
        explicit Call(Bytes bytes) : expected(std::move(bytes)) {}
        void call() { image.reset(createTemperateColor(200, 3)); }
        void check(Struck struck) const {
            EXPECT_TRUE(struck || image != nullptr);
            if (image == nullptr) return;
            if (struck) {
                expectEmpty(*image);
            } else {
                EXPECT_EQ(bytesOf(*image), expected);
            }
        }
        Image image;
        Bytes expected;
    };
    withEveryFault("createTemperateColor", [&] { return Call(bytesOf(*whole)); });
}

TEST(ObjectsShortOfMemory, VeilsAreThereOrNot) {
    struct Call {
        ~Call() { keladjustFree(veil); }
        void call() { veil = estimateVeil(minimum, mean, 3, 1, 0.5f); }
        void check(Struck struck) const {
            EXPECT_EQ(veil == nullptr, struck);
            // The smaller of minimum and half the mean.
            constexpr unsigned char expected[] = {5, 20, 1};
            if (veil != nullptr) {
                EXPECT_TRUE(std::equal(veil, veil + 3, expected));
            }
        }
        unsigned char minimum[3] = {5, 60, 90};
        unsigned char mean[3] = {200, 40, 3};
        unsigned char* veil = nullptr;
    };
    withEveryFault("estimateVeil", [] { return Call(); });
}

TEST(ObjectsShortOfMemory, MeansAreWholeOrNotTouched) {
    // A flat map's means are the map.
    struct Call {
        void call() { meanFilter15(source.data(), means.data(), 300, 300); }
        void check(Struck struck) const {
            EXPECT_TRUE(means == source || (struck && means == Bytes(90000, 9)));
        }
        Bytes source = Bytes(90000, 77);
        Bytes means = Bytes(90000, 9);
    };
    withEveryFault("meanFilter15", [] { return Call(); });
}

}  // namespace
