// Starts and adjustments for which the calling thread's memory ends at one place after another.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <cstdlib>
#include <new>
#include <utility>

#include "host/LibraryState.h"
#include "support/HostPicture.h"
#include "support/StageSettings.h"
#include "support/TemporaryFolder.h"

namespace {

// How many allocations this thread still gets; below zero as many as it likes.
thread_local int allocationsLeft = -1;
// Whether it gets the later ones again after one that it did not get.
thread_local bool failsOnce = false;

}  // namespace

void* operator new(std::size_t size) {
    if (allocationsLeft == 0) {
        if (failsOnce) allocationsLeft = -1;
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0) --allocationsLeft;
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using keladjust::libraryState;
using keladjust::test::HostPicture;

// Whatever is short, the answer is false and nothing runs, or true and the engine does.
TEST(StartShortOfMemory, RunsOrLeavesNothingRunning) {
    const keladjust::test::TemporaryFolder folder;
    setLogPath((folder / "").string().c_str());
    _AdjustParam settings = keladjust::test::identity;
    settings.brightness = 50;
    int refused = 0;
    for (int allocations = 0;; ++allocations) {
        ASSERT_LT(allocations, 2000);
        allocationsLeft = allocations;
        const bool started = initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG);
        const bool enough = allocationsLeft > 0;
        allocationsLeft = -1;
        EXPECT_EQ(libraryState().gpu.isRunning(), started) << allocations;
        if (!started) {
            ++refused;
            EXPECT_TRUE(libraryState().cpuOnly);
            HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
            picture.setPixel(0, 0, {100, 100, 100, 0});
            doAdjust(picture.image(), settings);
            EXPECT_EQ(picture.pixel(0, 0).red, 150) << allocations;
        }
        releaseOgre();
        EXPECT_FALSE(libraryState().gpu.isRunning());
        if (started && enough) break;
    }
    EXPECT_GT(refused, 0);
    // With memory again, all is well.
    EXPECT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));
    EXPECT_TRUE(libraryState().gpu.canAdjust());
    releaseOgre();
}

// Where one allocation fails, the stage that wanted it is left out, be it a render, and all others
// run.
TEST(AdjustShortOfMemory, LosesNoMoreThanAStage) {
    const keladjust::test::TemporaryFolder folder;
    setLogPath((folder / "").string().c_str());
    ASSERT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));
    HostPicture picture(31, 17, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(3);
    const auto adjusted = [&picture](float brightness, float sharpen, int allocations) {
        _AdjustParam settings = keladjust::test::identity;
        settings.brightness = brightness;
        settings.sharpen = sharpen;
        HostPicture copy(picture);
        failsOnce = true;
        allocationsLeft = allocations;
        doAdjust(copy.image(), settings);
        const bool failed = allocationsLeft < 0 && allocations >= 0;
        allocationsLeft = -1;
        failsOnce = false;
        return std::pair(copy.bytes(), failed);
    };
    const auto whole = adjusted(50, 60, -1).first;
    const auto withoutRender = adjusted(0, 60, -1).first;
    const auto withoutSharpening = adjusted(50, 0, -1).first;
    ASSERT_NE(whole, withoutRender);
    int rendersLeftOut = 0;
    for (int allocations = 0;; ++allocations) {
        ASSERT_LT(allocations, 1000);
        const auto [bytes, failed] = adjusted(50, 60, allocations);
        EXPECT_TRUE(bytes == whole || bytes == withoutRender || bytes == withoutSharpening)
            << allocations;
        if (bytes == withoutRender) ++rendersLeftOut;
        if (!failed) break;
    }
    EXPECT_GT(rendersLeftOut, 0);
    releaseOgre();
}

}  // namespace
