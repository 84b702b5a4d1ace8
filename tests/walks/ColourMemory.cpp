// A memory of what long rows of kernels make of colours: never more than a way to be faster.

#include "walks/ColourMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <span>

#include "filters/colour-ranges/ColourRanges.h"
#include "filters/saturation/Saturation.h"
#include "filters/temperature/Temperature.h"
#include "filters/vignette/Vignette.h"
#include "support/HostPicture.h"
#include "walks/StageForms.h"

namespace {

using keladjust::ColourMemory;
using keladjust::ColourRangeKernel;
using keladjust::PackedPixels;
using keladjust::PackedSpan;
using keladjust::PixelKernel;
using keladjust::PixelLayout;
using keladjust::RememberingKernels;
using keladjust::SaturationKernel;
using keladjust::TemperatureKernel;
using keladjust::test::everyFormat;
using keladjust::test::HostPicture;
using keladjust::test::PixelFormat;

const TemperatureKernel temperature(9000);
const SaturationKernel saturation(30);
const ColourRangeKernel range(300, 60, 20, 30, -20);
const PixelKernel* const kernels[] = {&temperature, &saturation, &range};

// A span with memory of its own.
struct Pixels {
    PackedPixels memory;

    PackedSpan span(std::size_t count) { return {0, 0, count, memory.bytes}; }

    // Colours of `bits` bits a channel: few of them come again and again, many hardly ever.
    void fill(unsigned bits, std::mt19937& random) {
        for (std::uint8_t& byte : memory.bytes) {
            byte = static_cast<std::uint8_t>(random() >> (32 - bits));
        }
    }
};

void expectSame(const Pixels& a, const Pixels& b, std::size_t count) {
    ASSERT_EQ(std::memcmp(a.memory.bytes, b.memory.bytes, 4 * count), 0);
}

// Spans through someone who remembers and through the kernels.
void expectAnswers(PixelLayout layout, RememberingKernels& remembering) {
    std::mt19937 random(3);
    for (int i = 0; i < 60; ++i) {
        // Flat parts and noise in turn, spans of every length.
        Pixels pixels;
        pixels.fill(i % 20 < 10 ? 3 : 8, random);
        PackedSpan span = pixels.span(1 + random() % PackedSpan::capacity);
        if (layout == PixelLayout::gray8) roundTrip(layout, span);
        Pixels expected = pixels;
        PackedSpan expectedSpan = expected.span(span.count);
        keladjust::runInTurn(layout, kernels, expectedSpan);
        remembering.run(span);
        ASSERT_NO_FATAL_FAILURE(expectSame(pixels, expected, span.count)) << i;
    }
}

TEST(ColourMemory, AnswersAsTheKernelsDo) {
    for (const PixelLayout layout : {PixelLayout::bgra32, PixelLayout::rgb16, PixelLayout::gray8}) {
        ColourMemory memory(1 << 16);
        RememberingKernels remembering(layout, kernels, memory);
        expectAnswers(layout, remembering);
    }
}

TEST(ColourMemory, AnswersAsTheKernelsDoWhereTheLastHaveOneOfTheirOwn) {
    for (const PixelLayout layout : {PixelLayout::bgra32, PixelLayout::rgb16, PixelLayout::gray8}) {
        ColourMemory memory(1 << 16);
        ColourMemory memoryOfLast(1 << 16);
        const std::span all(kernels);
        RememberingKernels last(layout, all.subspan(2), memoryOfLast);
        RememberingKernels remembering(layout, all.first(2), memory, &last);
        expectAnswers(layout, remembering);
    }
}

TEST(ColourMemory, KnowsBlackAndWhiteFromNothing) {
    ColourMemory memory(1 << 16);
    RememberingKernels remembering(PixelLayout::bgra32, kernels, memory);
    for (const std::uint8_t level : {std::uint8_t{0}, std::uint8_t{255}}) {
        Pixels pixels;
        std::memset(pixels.memory.bytes, level, sizeof pixels.memory.bytes);
        Pixels expected = pixels;
        PackedSpan span = pixels.span(3);
        PackedSpan expectedSpan = expected.span(3);
        keladjust::runInTurn(PixelLayout::bgra32, kernels, expectedSpan);
        remembering.run(span);
        expectSame(pixels, expected, 3);
    }
}

// In the smallest memory 128 colours share each place, in the largest one eight.
TEST(ColourMemory, TakesNoColourForAnother) {
    const SaturationKernel saturate(30);
    const PixelKernel* const one[] = {&saturate};
    for (const std::size_t pixels : {std::size_t{1}, std::size_t{1} << 26}) {
        ColourMemory memory(pixels);
        // The second round finds what the first one left.
        for (int round = 0; round < 2; ++round) {
            for (std::uint32_t first = 0; first < 1 << 24; first += 4 * PackedSpan::capacity) {
                // Each time somebody who has not met new colours and passes no span over.
                RememberingKernels remembering(PixelLayout::bgra32, one, memory);
                Pixels given;
                for (std::uint32_t i = 0; i < PackedSpan::capacity; ++i) {
                    const std::uint32_t colour = first + i;
                    std::memcpy(given.memory.bytes + 4 * std::size_t{i}, &colour, sizeof colour);
                }
                Pixels expected = given;
                PackedSpan span = given.span(PackedSpan::capacity);
                PackedSpan expectedSpan = expected.span(PackedSpan::capacity);
                saturate.run(expectedSpan);
                remembering.run(span);
                ASSERT_NO_FATAL_FAILURE(expectSame(given, expected, PackedSpan::capacity)) << first;
            }
        }
    }
}

TEST(ColourMemory, PaysForMuchWorkAlone) {
    const PixelKernel* const little[] = {&saturation};
    EXPECT_FALSE(ColourMemory::pays(little));
    EXPECT_FALSE(ColourMemory::pays({}));
    EXPECT_TRUE(ColourMemory::pays(kernels));
}

// With memories or without: large pictures use them, small ones do not.
TEST(ColourMemory, DoesNotShowInAPicture) {
    for (const PixelFormat format : everyFormat) {
        HostPicture whole(400, 300, format.bpp, format.format);
        whole.fillRandom(4);
        HostPicture inTurn(whole);
        const keladjust::VignetteKernel vignette(400, 300, -40, 50, 60, 40, 20, 10);
        // Two memories: those before the range pay, and so does the range.
        const PixelKernel* const all[] = {&temperature, &saturation, &saturation,
                                          &range,       &vignette,   &range};
        keladjust::runKernels(*keladjust::pictureOf(whole.image()), all);

        const PixelLayout layout = keladjust::layoutOf(*inTurn.image());
        for (unsigned y = 0; y < 300; ++y) {
            std::uint8_t* const row = inTurn.bits() + std::size_t{y} * inTurn.image()->effWidth;
            PackedPixels pixels;
            PackedSpan span{0, y, 400, pixels.bytes};
            loadSpan(layout, row, span);
            keladjust::runInTurn(layout, all, span);
            storeSpan(layout, span, row);
        }
        EXPECT_EQ(whole.bytes(), inTurn.bytes()) << format.bpp << ", " << format.format;
        EXPECT_TRUE(whole.guardsIntact());
    }
}

}  // namespace
