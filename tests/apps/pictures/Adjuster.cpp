// Which path a picture takes, and that it is the path that is told of. Runs on a display.

#include "pictures/Adjuster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "settings/Record.h"
#include "support/Pictures.h"
#include "support/TwoPaths.h"
#include "support/Variable.h"
#include "text/Failure.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

// OpenGL's guaranteed largest texture is smaller, Mesa's is 16384.
constexpr std::uint32_t beyondTextures = 16385;

/// Why the GPU could not be used, as the failure of `work` tells it. How the library puts that is
/// its own affair.
std::string refusal(const std::function<void()>& work) {
    try {
        work();
    } catch (const Failure& failure) {
        const std::string text = failure.what();
        const std::string before = "the GPU cannot be used (";
        const std::string behind = "); use --auto or --cpu";
        if (text.starts_with(before) && text.ends_with(behind)) {
            return text.substr(before.size(), text.size() - before.size() - behind.size());
        }
        ADD_FAILURE() << text;
    }
    return "";
}

class AdjusterOnADisplay : public testing::Test {
protected:
    // The pictures of both paths differ, so what comes out tells which one it was. They are made
    // beforehand because the library has one engine, whoever starts it.
    const Photo colours = noise(61, 47, ChannelLayout::bgra);
    const Photo onCpu = adjusted(colours, GpuUse::never);
    const Photo onGpu = adjusted(colours, GpuUse::always);
};

TEST_F(AdjusterOnADisplay, TakesThePathThatItIsTold) {
    bool differ = false;
    for (std::uint32_t y = 0; y < colours.height(); ++y) {
        differ = differ || !std::equal(onCpu.row(y), onCpu.row(y) + onCpu.stride(), onGpu.row(y));
    }
    EXPECT_TRUE(differ);

    for (const auto& [use, gpu] :
         {std::pair{GpuUse::never, false}, std::pair{GpuUse::whenPossible, true},
          std::pair{GpuUse::always, true}}) {
        Photo photo = colours;
        Adjuster adjuster(use);
        EXPECT_EQ(adjuster.adjust(photo, someSettings()).onGpuPath, gpu);
        expectSamePixels(photo, gpu ? onGpu : onCpu);
    }
}

// What the library's exposure is on the GPU: times 2^(50 / 50 x 0.6), rounded to a level, in which
// drivers may differ by one.
TEST_F(AdjusterOnADisplay, RendersWhatTheFormulaSays) {
    Photo photo(5, 3, ChannelLayout::bgra);
    for (std::uint32_t y = 0; y < 3; ++y) {
        for (std::uint32_t x = 0; x < 5; ++x) {
            unsigned char* pixel = photo.pixel(x, y);
            pixel[0] = 30;
            pixel[1] = 120;
            pixel[2] = 200;
            pixel[3] = static_cast<unsigned char>(10 * x);
        }
    }
    _AdjustParam record = usualRecord();
    record.exposure = 50;
    Adjuster adjuster(GpuUse::always);
    EXPECT_TRUE(adjuster.adjust(photo, record).onGpuPath);
    for (std::uint32_t y = 0; y < 3; ++y) {
        for (std::uint32_t x = 0; x < 5; ++x) {
            const unsigned char* pixel = photo.pixel(x, y);
            EXPECT_NEAR(pixel[0], 45, 1);
            EXPECT_NEAR(pixel[1], 182, 1);
            EXPECT_EQ(pixel[2], 255);
            EXPECT_EQ(pixel[3], 10 * x);
        }
    }
}

TEST_F(AdjusterOnADisplay, WhatCannotBeRenderedTakesTheCpuPathWhole) {
    const Photo tooWide = noise(beyondTextures, 2, ChannelLayout::bgra);
    const Photo tooWideOnCpu = adjusted(tooWide, GpuUse::never);
    Adjuster adjuster(GpuUse::whenPossible);
    for (int i = 0; i < 2; ++i) {
        Photo photo = tooWide;
        const Adjustment adjustment = adjuster.adjust(photo, someSettings());
        EXPECT_FALSE(adjustment.onGpuPath);
        EXPECT_NE(adjustment.obstacle, "");
        expectSamePixels(photo, tooWideOnCpu);

        // Others are rendered as before.
        photo = colours;
        EXPECT_TRUE(adjuster.adjust(photo, someSettings()).onGpuPath);
        expectSamePixels(photo, onGpu);
    }
}

TEST_F(AdjusterOnADisplay, WhatHasToBeRenderedAndCannotBeStaysAsItWas) {
    const Photo tooHigh = noise(1, beyondTextures, ChannelLayout::grey);
    Adjuster adjuster(GpuUse::always);
    Photo photo = tooHigh;
    EXPECT_NE(refusal([&] { adjuster.adjust(photo, someSettings()); }), "");
    expectSamePixels(photo, tooHigh);
    Photo next = colours;
    EXPECT_TRUE(adjuster.adjust(next, someSettings()).onGpuPath);
    expectSamePixels(next, onGpu);
}

TEST_F(AdjusterOnADisplay, ADriverOnTheCpuIsLeftAlone) {
    const Variable driver("force_gl_renderer", "llvmpipe (LLVM 15.0.6, 256 bits)");
    Photo photo = colours;
    const Adjustment adjustment = Adjuster(GpuUse::whenPossible).adjust(photo, someSettings());
    EXPECT_FALSE(adjustment.onGpuPath);
    EXPECT_NE(adjustment.obstacle, "");
    expectSamePixels(photo, onCpu);

    photo = colours;
    EXPECT_TRUE(Adjuster(GpuUse::always).adjust(photo, someSettings()).onGpuPath);
    expectSamePixels(photo, onGpu);
}

TEST_F(AdjusterOnADisplay, WithoutADisplayTheCpuHasToDo) {
    const Variable display("DISPLAY", nullptr);
    const std::string reason = refusal([] { const Adjuster adjuster(GpuUse::always); });
    EXPECT_NE(reason, "");
    Adjuster adjuster(GpuUse::whenPossible);
    Photo photo = colours;
    const Adjustment adjustment = adjuster.adjust(photo, someSettings());
    EXPECT_FALSE(adjustment.onGpuPath);
    EXPECT_EQ(adjustment.obstacle, reason);
    expectSamePixels(photo, onCpu);
}

}  // namespace
