// A memory of what long rows of kernels make of colours: never more than a way to be faster.

#include "filters/ColourMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>

#include "filters/ColourRanges.h"
#include "filters/Saturation.h"
#include "filters/StageForms.h"
#include "filters/TemperatureTint.h"
#include "filters/Vignette.h"
#include "support/HostPicture.h"

namespace {

using keladjust::ColourMemory;
using keladjust::ColourRangeKernel;
using keladjust::PixelKernel;
using keladjust::PixelLayout;
using keladjust::PixelSpan;
using keladjust::SaturationKernel;
using keladjust::TemperatureKernel;
using keladjust::test::everyFormat;
using keladjust::test::HostPicture;
using keladjust::test::PixelFormat;

const TemperatureKernel temperature(9000);
const SaturationKernel saturation(30);
const ColourRangeKernel range(300, 60, 20, 30, -20);
const PixelKernel* const kernels[] = {&temperature, &saturation, &range};

// Colours of `bits` bits a channel: few of them come again and again, many hardly ever.
void fill(PixelSpan& span, std::size_t count, unsigned bits, std::mt19937& random) {
    span.count = count;
    for (std::size_t i = 0; i < count; ++i) {
        for (std::uint8_t* lane : {span.red, span.green, span.blue}) {
            lane[i] = static_cast<std::uint8_t>(random() >> (32 - bits));
        }
    }
}

void expectSame(const PixelSpan& a, const PixelSpan& b) {
    ASSERT_EQ(std::memcmp(a.red, b.red, a.count), 0);
    ASSERT_EQ(std::memcmp(a.green, b.green, a.count), 0);
    ASSERT_EQ(std::memcmp(a.blue, b.blue, a.count), 0);
}

TEST(ColourMemory, AnswersAsTheKernelsDo) {
    for (const PixelLayout layout : {PixelLayout::bgra32, PixelLayout::rgb16, PixelLayout::gray8}) {
        ColourMemory memory(layout, kernels);
        std::mt19937 random(3);
        for (int i = 0; i < 60; ++i) {
            // Flat parts and noise in turn, spans of every length.
            PixelSpan span;
            fill(span, 1 + random() % PixelSpan::capacity, i % 20 < 10 ? 3 : 8, random);
            if (layout == PixelLayout::gray8) roundTrip(layout, span);
            PixelSpan expected = span;
            keladjust::runInTurn(layout, kernels, expected);
            memory.run(span);
            ASSERT_NO_FATAL_FAILURE(expectSame(span, expected)) << i;
        }
    }
}

TEST(ColourMemory, KnowsBlackAndWhiteFromNothing) {
    ColourMemory memory(PixelLayout::bgra32, kernels);
    for (const std::uint8_t level : {std::uint8_t{0}, std::uint8_t{255}}) {
        PixelSpan span;
        span.count = 3;
        for (std::uint8_t* lane : {span.red, span.green, span.blue}) std::memset(lane, level, 3);
        PixelSpan expected = span;
        keladjust::runInTurn(PixelLayout::bgra32, kernels, expected);
        memory.run(span);
        expectSame(span, expected);
    }
}

TEST(ColourMemory, PaysForMuchWorkAlone) {
    const PixelKernel* const little[] = {&saturation};
    EXPECT_FALSE(ColourMemory::pays(little));
    EXPECT_FALSE(ColourMemory::pays({}));
    EXPECT_TRUE(ColourMemory::pays(kernels));
}

// With the memory or without: large pictures use it, small ones do not.
TEST(ColourMemory, DoesNotShowInAPicture) {
    for (const PixelFormat format : everyFormat) {
        HostPicture whole(400, 300, format.bpp, format.format);
        whole.fillRandom(4);
        HostPicture inTurn(whole);
        const keladjust::VignetteKernel vignette(400, 300, -40, 50, 60, 40, 20, 10);
        const PixelKernel* const all[] = {&temperature, &saturation, &range, &vignette, &range};
        runKernels(*whole.image(), all);

        const PixelLayout layout = keladjust::layoutOf(*inTurn.image());
        for (unsigned y = 0; y < 300; ++y) {
            std::uint8_t* const row = inTurn.bits() + std::size_t{y} * inTurn.image()->effWidth;
            PixelSpan span;
            span.y = y;
            span.count = 400;
            loadSpan(layout, row, span);
            keladjust::runInTurn(layout, all, span);
            storeSpan(layout, span, row);
        }
        EXPECT_EQ(whole.bytes(), inTurn.bytes()) << format.bpp << ", " << format.format;
        EXPECT_TRUE(whole.guardsIntact());
    }
}

}  // namespace
