#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "host/LibraryState.h"
#include "support/HostPicture.h"
#include "support/StageSettings.h"

namespace {

using keladjust::libraryState;
using keladjust::test::HostPicture;
using keladjust::test::identity;

TEST(AdjustParam, IsSlotsOfFourBytesOfWhich65AreFixed) {
    EXPECT_EQ(sizeof(_AdjustParam), std::size_t{4} * KELADJUST_SLOT_COUNT);
    EXPECT_GE(KELADJUST_SLOT_COUNT, 65);
    const auto slot = [](std::size_t offset) { return offset / 4; };
    EXPECT_EQ(slot(offsetof(_AdjustParam, temperature)), 0u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, tint)), 1u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, saturation)), 6u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, sharpen)), 12u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, range)), 13u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, range[KELADJUST_RANGE_MAGENTA].minDegree)), 33u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, range[KELADJUST_RANGE_AQUA].brightness)), 52u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, vignetteAmount)), 53u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, vignetteSize)), 54u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, vignetteRoundness)), 55u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, vignetteFeather)), 56u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, vignetteExposure)), 57u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, vignetteHighlights)), 58u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, distortion)), 59u);
    EXPECT_EQ(slot(offsetof(_AdjustParam, luminanceNoiseReduction)), 64u);
}

TEST(CreateCxImage, ForcesEightBitsToGreyAndReleaseLeavesTheHostsBuffer) {
    std::vector<unsigned char> pixels(32, 9);
    unsigned char* bits = pixels.data();
    CxImage* image = createCxImage(&bits, 5, 4, 8, IMAGE_FORMAT_BGRA);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->getFormat(), IMAGE_FORMAT_GRAY);
    EXPECT_EQ(image->GetBits(), pixels.data());
    EXPECT_EQ(image->GetEffWidth(), 8u);
    releaseCxImage(image);
    EXPECT_EQ(bits, pixels.data());
    EXPECT_EQ(pixels, std::vector<unsigned char>(32, 9));
}

TEST(CreateCxImage, OfANullPointerHasNoPixels) {
    CxImage* image = createCxImage(nullptr, 5, 4, 32, IMAGE_FORMAT_BGRA);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetBits(), nullptr);
    _AdjustParam settings = identity;
    settings.exposure = 30.0f;
    EXPECT_EQ(doAdjust(image, settings), image);
    releaseCxImage(image);
}

TEST(ReleaseCxImage, IgnoresNull) {
    releaseCxImage(nullptr);
    // Still here, and releasing a real one still works.
    CxImage* image = createCxImage(nullptr, 0, 0, 0, IMAGE_FORMAT_UNKNOWN);
    ASSERT_NE(image, nullptr);
    releaseCxImage(image);
}

TEST(CreateCxImageFromFile, WithoutAnEngineIsEmpty) {
    for (const char* name : {"no-such-file.png", "", static_cast<const char*>(nullptr)}) {
        CxImage* image = createCxImageFromFile(name);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->GetBits(), nullptr);
        EXPECT_EQ(image->GetWidth(), 0u);
        EXPECT_EQ(image->GetHeight(), 0u);
        EXPECT_EQ(image->getFormat(), IMAGE_FORMAT_UNKNOWN);
        releaseCxImage(image);
    }
}

TEST(SetLogPath, KeepsUpTo511Characters) {
    const std::string longest(511, 'x');
    const char* stored = setLogPath(longest.c_str());
    EXPECT_EQ(stored, longest);
    EXPECT_EQ(stored[511], '\0');
    EXPECT_EQ(setLogPath((longest + "beyond").c_str()), longest);
}

TEST(SetLogPath, LeavesNoTraceOfALongerOne) {
    setLogPath("a/rather/long/path/");
    const char* stored = setLogPath("b/");
    EXPECT_STREQ(stored, "b/");
    for (std::size_t i = 2; i < 512; ++i) ASSERT_EQ(stored[i], '\0') << i;
    EXPECT_STREQ(setLogPath(nullptr), "");
}

TEST(DoAdjust, WorksBeforeInitialisationAndWithNull) {
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(doAdjust(picture.image(), identity), picture.image());
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_EQ(doAdjust(nullptr, identity), nullptr);
}

TEST(LifeOfTheLibrary, AnyOrderOfCallsIsHarmless) {
    releaseOgre();
    releaseOgre();
    for (int i = 0; i < 3; ++i) {
        initOgreRunTime(nullptr, nullptr);
        initOgreRunTime("nowhere/", "nowhere/");
        HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
        EXPECT_EQ(doAdjust(picture.image(), identity), picture.image());
        releaseOgre();
        EXPECT_EQ(doAdjust(picture.image(), identity), picture.image());
        releaseOgre();
    }
    EXPECT_EQ(libraryState().busyEvent(), nullptr);
}

// The colour table is made and freed under the same lock as the engine.
TEST(LifeOfTheLibrary, StartsAndStopsFromTwoThreadsAtOnce) {
    std::vector<std::thread> hosts;
    for (int host = 0; host < 2; ++host) {
        hosts.emplace_back([] {
            for (int i = 0; i < 20; ++i) {
                EXPECT_FALSE(initOgreRunTime("nowhere/", "nowhere/"));
                releaseOgre();
            }
        });
    }
    for (std::thread& host : hosts) host.join();
    EXPECT_EQ(libraryState().busyEvent(), nullptr);
    initOgreRunTime("nowhere/", "nowhere/");
    EXPECT_NE(getLut3dData(identity), nullptr);
    releaseOgre();
}

TEST(DoAdjust, CallsExcludeOneAnotherOnceTheBusyEventExists) {
    initOgreRunTime(nullptr, nullptr);
    const auto busy = libraryState().busyEvent();
    ASSERT_NE(busy, nullptr);

    busy->wait();  // as an adjustment in flight does
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {100, 100, 100, 0});
    std::atomic<bool> done{false};
    std::thread caller([&] {
        _AdjustParam settings = identity;
        settings.brightness = 50.0f;
        doAdjust(picture.image(), settings);
        done = true;
    });
    for (int i = 0; i < 1000; ++i) std::this_thread::yield();
    EXPECT_FALSE(done);
    busy->signal();
    caller.join();
    EXPECT_EQ(picture.pixel(0, 0).red, 150);

    // The event is signalled again at the end of a call, so the next one does not wait.
    doAdjust(picture.image(), identity);
    releaseOgre();
}

TEST(DoAdjust, ManyThreadsAtOnceGiveWhatOneGives) {
    initOgreRunTime(nullptr, nullptr);
    _AdjustParam settings = identity;
    settings.temperature = 9000;
    settings.exposure = 20.0f;
    settings.saturation = 30.0f;
    HostPicture picture(300, 200, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(3);
    HostPicture expected(picture);
    doAdjust(expected.image(), settings);

    std::vector<HostPicture> pictures(4, picture);
    std::vector<std::thread> callers;
    for (HostPicture& each : pictures) {
        callers.emplace_back([&] { doAdjust(each.image(), settings); });
    }
    for (std::thread& caller : callers) caller.join();
    for (const HostPicture& each : pictures) EXPECT_EQ(each.bytes(), expected.bytes());
    releaseOgre();
}

}  // namespace
