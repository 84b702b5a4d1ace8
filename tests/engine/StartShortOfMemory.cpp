// A start for which the calling thread's memory ends at one place after another. Whatever is short,
// the answer is false and nothing runs, or true and the engine does.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <cstdlib>
#include <new>

#include "host/LibraryState.h"
#include "support/HostPicture.h"
#include "support/StageSettings.h"
#include "support/TemporaryFolder.h"

namespace {

// How many allocations this thread still gets; below zero as many as it likes.
thread_local int allocationsLeft = -1;

}  // namespace

void* operator new(std::size_t size) {
    if (allocationsLeft == 0) throw std::bad_alloc();
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

}  // namespace
