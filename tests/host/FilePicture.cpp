// Images of picture files: whose their pixels are, and that these are freed once, whatever a host
// does with an image. AddressSanitizer sees what is freed twice, or touched after it was.

#include "host/FilePicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "support/HostPicture.h"

namespace {

using keladjust::EngineModule;
using keladjust::EnginePictureTaker;
using keladjust::EngineReason;
using keladjust::FilePicture;

/// Gives a picture of grey levels for every name but the empty one.
class PictureGiver final : public EngineModule {
public:
    bool start(const keladjust::EngineStart&, EngineReason&) noexcept override { return true; }
    void stop() noexcept override {}
    bool isRunning() const noexcept override { return true; }
    bool hasEffect(std::uint32_t) const noexcept override { return false; }
    bool readDriver(keladjust::EngineDriver&) const noexcept override { return false; }
    bool render(const keladjust::EngineRender&, EngineReason&) noexcept override { return false; }
    bool loadPicture(const char* path, EnginePictureTaker& taker) noexcept override {
        if (path == nullptr || *path == '\0') return false;
        // Gone after the call, as the engine's picture may be.
        const std::unique_ptr<unsigned char[]> pixels(new unsigned char[byteSize]);
        std::fill_n(pixels.get(), byteSize, static_cast<unsigned char>(*path));
        taker.take({pixels.get(), 3, 2, 24, byteSize, IMAGE_FORMAT_BGR});
        return true;
    }
    void log(const char*) noexcept override {}

    std::size_t byteSize = 3 * 2 * 3;
};

using Image = std::unique_ptr<CxImage, decltype(&releaseCxImage)>;

class FilePictures : public testing::Test {
protected:
    Image load(const char* name) { return {files.load(&engine, name), releaseCxImage}; }

    PictureGiver engine;
    FilePicture files;
};

TEST_F(FilePictures, AreTheLibrarysWithPaddedRows) {
    const Image image = load("a");
    ASSERT_NE(image->GetBits(), nullptr);
    EXPECT_FALSE(image->ownsBits);
    ASSERT_NE(image->ppHostBits, nullptr);
    EXPECT_EQ(*image->ppHostBits, image->GetBits());
    EXPECT_EQ(image->GetEffWidth(), 12u);
    EXPECT_EQ(image->GetPixelColor(2, 1, true), (_tagMyRGBQUAD{'a', 'a', 'a', 0}));
    EXPECT_EQ(image->GetBits()[9], 0) << "padding";
}

TEST_F(FilePictures, ThatAreMissingAreEmpty) {
    for (const char* name : {"", static_cast<const char*>(nullptr)}) {
        const Image image = load(name);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->GetBits(), nullptr);
        EXPECT_EQ(image->getFormat(), IMAGE_FORMAT_UNKNOWN);
    }
    const Image withoutAnEngine(files.load(nullptr, "a"), releaseCxImage);
    EXPECT_EQ(withoutAnEngine->GetBits(), nullptr);
}

TEST_F(FilePictures, WithRowsTooShortAreEmpty) {
    engine.byteSize = 17;
    EXPECT_EQ(load("a")->GetBits(), nullptr);
}

// Ownership is taken over from the source: the pixels are the image's own from then on.
TEST_F(FilePictures, BecomeTheImagesOwnByCopying) {
    const CxImage source(3, 2, 24, IMAGE_FORMAT_BGR);
    const Image image = load("a");
    unsigned char* const bits = image->GetBits();
    image->Copy(source);
    EXPECT_TRUE(image->ownsBits);
    EXPECT_EQ(image->GetBits(), bits);
    image->SetPixelColor(2, 1, {1, 2, 3, 0});
    const Image next = load("b");
    EXPECT_EQ(image->GetPixelColor(2, 1, true), (_tagMyRGBQUAD{1, 2, 3, 0}));
    EXPECT_EQ(next->GetPixelColor(2, 1, true), (_tagMyRGBQUAD{'b', 'b', 'b', 0}));
}

TEST_F(FilePictures, AreFreedForAnotherGeometry) {
    const CxImage source(5, 5, 32, IMAGE_FORMAT_BGRA);
    const Image image = load("a");
    image->Copy(source);
    EXPECT_TRUE(image->ownsBits);
    EXPECT_EQ(image->GetWidth(), 5u);
    EXPECT_EQ(load("b")->GetPixelColor(0, 0, true), (_tagMyRGBQUAD{'b', 'b', 'b', 0}));
}

// An image of a file that another has followed is of no use, and does no harm. Where the next
// file's pixels happen to come to lie in the same place, it shows those.
TEST_F(FilePictures, OfBeforeAreNotCopied) {
    const Image before = load("a");
    const Image now = load("b");
    const bool isSamePlace = before->GetBits() == now->GetBits();
    const unsigned char shown = isSamePlace ? 'b' : 0;
    CxImage target;
    target.Copy(*before);
    EXPECT_EQ(target.GetBits() == nullptr, !isSamePlace);
    target.Copy(before.get());
    EXPECT_EQ(target.GetWidth(), 3u);
    EXPECT_EQ(target.GetPixelColor(0, 0, true), (_tagMyRGBQUAD{shown, shown, shown, 0}));
}

// Every order of so many calls on an image, a shallow copy of it and the file that follows.
TEST_F(FilePictures, TakeCallsInAnyOrder) {
    constexpr int length = 4;
    const CxImage equal(3, 2, 24, IMAGE_FORMAT_BGR);
    const CxImage other(7, 4, 32, IMAGE_FORMAT_BGRA);
    unsigned char hostsPixels[24] = {};
    unsigned char* hostsBits = hostsPixels;
    const CxImage hosts(&hostsBits, 3, 2, 24, IMAGE_FORMAT_BGR);

    Image image = load("a");
    Image shallow(new CxImage(*image), releaseCxImage);
    const std::function<void()> calls[] = {
        [&] {
            if (image) image->Copy(equal);
        },
        [&] {
            if (image) image->Copy(&other);
        },
        [&] {
            if (image) image->Create(9, 9, 32, IMAGE_FORMAT_BGRA);
        },
        [&] {
            if (image) image->Destroy();
        },
        [&] { image.reset(); },
        [&] {
            if (shallow) shallow->Copy(equal);
        },
        [&] {
            if (shallow) shallow->Copy(other);
        },
        [&] {
            if (image && shallow) image->Copy(*shallow);
        },
        [&] {
            if (image && shallow) shallow->Copy(image.get());
        },
        [&] { load("b"); },
    };
    constexpr std::size_t count = std::size(calls);
    std::size_t orders = 1;
    for (int i = 0; i < length; ++i) orders *= count;
    for (std::size_t order = 0; order < orders; ++order) {
        image = load("a");
        shallow.reset(new CxImage(*image));
        std::size_t rest = order;
        for (int i = 0; i < length; ++i, rest /= count) calls[rest % count]();
        // Whatever has become of them, a copy of a picture is that picture.
        for (const Image* each : {&image, &shallow}) {
            if (*each == nullptr) continue;
            (*each)->Copy(&hosts);
            ASSERT_EQ((*each)->GetWidth(), 3u) << order;
            ASSERT_EQ((*each)->GetPixelColor(2, 1, true), (_tagMyRGBQUAD{0, 0, 0, 0})) << order;
            (*each)->Copy(&other);  // frees what is not owned any more, too
        }
        image.reset();
        shallow.reset();
    }
    const Image last = load("c");
    EXPECT_EQ(last->GetPixelColor(2, 1, true), (_tagMyRGBQUAD{'c', 'c', 'c', 0}));
}

}  // namespace
