#ifndef KELADJUST_TESTS_SUPPORT_COLOURSWEEP_H
#define KELADJUST_TESTS_SUPPORT_COLOURSWEEP_H

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "arithmetic/BitCast.h"
#include "models/Scalars.h"
#include "support/HostPicture.h"
#include "support/InstructionSets.h"

namespace keladjust::test {

/// Runs `stage(CxImage*)` on a picture of all 16.7 million colours and compares every pixel with
/// `model(Bytes) -> Bytes`, alpha with what it was.
template <class Stage, class Model>
void expectEveryColour(Stage stage, Model model) {
    HostPicture picture = everyColour();
    ASSERT_EQ(stage(picture.image()), picture.image());
    ASSERT_TRUE(picture.guardsIntact());

    constexpr std::uint32_t colours = 1u << 24;
    std::atomic<std::uint32_t> mismatches{0};
    std::atomic<std::uint32_t> firstMismatch{colours};
    const auto compare = [&](std::uint32_t begin, std::uint32_t end) {
        for (std::uint32_t i = begin; i < end; ++i) {
            const int red = static_cast<int>(i >> 16);
            const int green = static_cast<int>(i >> 8 & 255);
            const int blue = static_cast<int>(i & 255);
            const Bytes expected = model(Bytes{red, green, blue});
            const std::uint8_t* p = picture.bits() + std::size_t{i} * 4;
            if (p[2] == expected[0] && p[1] == expected[1] && p[0] == expected[2] &&
                p[3] == (red ^ green ^ blue)) {
                continue;
            }
            ++mismatches;
            std::uint32_t first = firstMismatch;
            while (i < first && !firstMismatch.compare_exchange_weak(first, i)) {
            }
        }
    };
    std::thread otherHalf(compare, colours / 2, colours);
    compare(0, colours / 2);
    otherHalf.join();

    if (mismatches == 0) return;
    const std::uint32_t i = firstMismatch;
    const Bytes in{static_cast<int>(i >> 16), static_cast<int>(i >> 8 & 255),
                   static_cast<int>(i & 255)};
    const Bytes expected = model(in);
    const std::uint8_t* p = picture.bits() + std::size_t{i} * 4;
    ADD_FAILURE() << mismatches << " of " << colours << " colours differ, first (" << in[0] << ", "
                  << in[1] << ", " << in[2] << "): got (" << int{p[2]} << ", " << int{p[1]} << ", "
                  << int{p[0]} << "), expected (" << expected[0] << ", " << expected[1] << ", "
                  << expected[2] << ")";
}

/// What a stage that treats all three channels alike makes of every byte.
inline std::vector<int> curveOf(CxImage* (*stage)(CxImage*, float), float setting) {
    HostPicture picture = everyByte();
    EXPECT_EQ(stage(picture.image(), setting), picture.image());
    std::vector<int> curve;
    for (unsigned i = 0; i < 256; ++i) {
        const _tagMyRGBQUAD p = picture.pixel(i, 0);
        EXPECT_TRUE(p.red == p.green && p.green == p.blue && p.alpha == 255) << i;
        curve.push_back(p.red);
    }
    return curve;
}

/// Entries of a colour table: a lattice of 17 steps an axis and values a host may pass by mistake.
inline std::vector<Floats> tableEntries() {
    std::vector<Floats> entries;
    for (int r = 0; r <= 16; ++r) {
        for (int g = 0; g <= 16; ++g) {
            for (int b = 0; b <= 16; ++b) {
                entries.push_back({static_cast<float>(r) / 16.0f, static_cast<float>(g) / 16.0f,
                                   static_cast<float>(b) / 16.0f});
            }
        }
    }
    entries.push_back({-0.5f, 0.25f, 1.5f});
    entries.push_back({1e30f, 0.5f, -1e30f});
    entries.push_back({0.1f, 0.7f, 0.3f});
    entries.push_back({1.0f / 3.0f, 2.0f / 3.0f, 1e-6f});
    return entries;
}

/// Entries within 0..1 that no lattice has: channels of any magnitude down to the smallest float,
/// with neighbours of each other and the ends of the scale among them.
inline std::vector<Floats> entriesOfEveryMagnitude() {
    std::mt19937 random(5);
    const auto channel = [&random](float other) {
        const float any = static_cast<float>(random()) / 4294967296.0f;
        switch (random() % 8) {
            case 0:
                return std::ldexp(any, -static_cast<int>(random() % 160));
            case 1:
                return std::nextafter(other, 0.0f);
            case 2:
                return std::nextafter(other, 1.0f);
            case 3:
                return other;
            case 4:
                return random() % 2 == 0 ? 0.0f : 1.0f;
            default:
                return any;
        }
    };
    std::vector<Floats> entries;
    for (int i = 0; i < 20000; ++i) {
        const float red = channel(0.5f);
        const float green = channel(red);
        entries.push_back({red, green, channel(random() % 2 == 0 ? red : green)});
    }
    return entries;
}

/// Runs `stage(lut, count, stride)` on the entries, for strides of 3 and 5, and compares every
/// float, to the bit, with `model(Floats) -> Floats`; the floats between entries stay as they are.
template <class Stage, class Model>
void expectEntries(const std::vector<Floats>& entries, Stage stage, Model model) {
    for (const std::size_t stride : {std::size_t{3}, std::size_t{5}}) {
        constexpr float filler = 42.0f;
        std::vector<float> lut(entries.size() * stride, filler);
        for (std::size_t i = 0; i < entries.size(); ++i) {
            std::copy(entries[i].begin(), entries[i].end(),
                      lut.begin() + static_cast<std::ptrdiff_t>(i * stride));
        }
        ASSERT_EQ(
            stage(lut.data(), static_cast<unsigned long>(entries.size()), static_cast<int>(stride)),
            lut.data());
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const Floats expected = model(entries[i]);
            for (std::size_t c = 0; c < stride; ++c) {
                const float got = lut[i * stride + c];
                const float want = c < 3 ? expected[c] : filler;
                ASSERT_EQ(bitCast<std::uint32_t>(got), bitCast<std::uint32_t>(want))
                    << "entry (" << entries[i][0] << ", " << entries[i][1] << ", " << entries[i][2]
                    << ") channel " << c << " stride " << stride << ": " << got << " instead of "
                    << want;
            }
        }
    }
}

/// The same for tableEntries() and, on every instruction set, entriesOfEveryMagnitude().
template <class Stage, class Model>
void expectEveryEntry(Stage stage, Model model) {
    expectEntries(tableEntries(), stage, model);
    const std::vector<Floats> entries = entriesOfEveryMagnitude();
    forEachInstructionSet([&](const std::string& name) {
        SCOPED_TRACE(name);
        expectEntries(entries, stage, model);
    });
}

}  // namespace keladjust::test

#endif
