// Tables that rise with one slope between two flat ends, computed instead of looked up.

#include "walks/ByteRamp.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "filters/contrast/Contrast.h"
#include "filters/exposure/Brightness.h"
#include "filters/exposure/Exposure.h"
#include "support/InstructionSets.h"
#include "walks/ByteMap.h"

namespace {

using keladjust::ByteRamp;
using keladjust::byteRampOf;
using keladjust::ByteTable;

void expectTable(const ByteRamp& ramp, const ByteTable& table, const std::string& name) {
    for (unsigned in = 0; in < 256; ++in) {
        ASSERT_EQ(ramp(static_cast<std::uint8_t>(in)), table[in]) << name << ", " << in;
    }
}

template <class Kernel>
int rampsOf(const char* name) {
    int found = 0;
    for (int setting = -100; setting <= 100; ++setting) {
        const ByteTable table = *Kernel(static_cast<float>(setting)).table();
        if (const auto ramp = byteRampOf(table)) {
            expectTable(*ramp, table, name + std::to_string(setting));
            ++found;
        }
    }
    return found;
}

TEST(ByteRamp, IsTheTableOfTheStagesThatScaleBytes) {
    // Of 201 settings each. Single precision rounds a few gains to products that no slope has.
    EXPECT_GE(rampsOf<keladjust::ExposureKernel>("exposure "), 199);
    EXPECT_GE(rampsOf<keladjust::BrightnessKernel>("brightness "), 190);
    EXPECT_EQ(rampsOf<keladjust::ContrastKernel>("contrast "), 201);
}

TEST(ByteRamp, IsNoneOfOtherTables) {
    ByteTable curve;
    ByteTable falling;
    for (unsigned in = 0; in < 256; ++in) {
        curve[in] = static_cast<std::uint8_t>(in * in / 255);
        falling[in] = static_cast<std::uint8_t>(255 - in);
    }
    EXPECT_FALSE(byteRampOf(curve));
    EXPECT_FALSE(byteRampOf(falling));
    ByteTable nearly = *keladjust::ExposureKernel(20).table();
    ASSERT_TRUE(byteRampOf(nearly));
    nearly[100] = static_cast<std::uint8_t>(nearly[100] + 1);
    EXPECT_FALSE(byteRampOf(nearly));
}

TEST(ByteRamp, GivesTheSameBytesInVectors) {
    // The ends of every number that a ramp has, and one in between.
    std::vector<ByteRamp> ramps;
    const std::uint8_t lows[] = {0, 40, 255};
    const std::uint8_t bases[] = {0, 30, 255};
    const std::uint16_t wholes[] = {0, 1, 255};
    const std::uint16_t fractions[] = {0, 20000, 65535};
    for (const std::uint8_t low : lows) {
        for (const std::uint8_t base : bases) {
            for (const std::uint16_t whole : wholes) {
                for (const std::uint16_t fraction : fractions) {
                    ramps.push_back({low, base, {whole, fraction}});
                }
            }
        }
    }
    std::vector<std::uint8_t> bytes(4 * 259);  // every value in every place of a pixel, and a rest
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * 5 / 4);
    keladjust::test::forEachInstructionSet([&](const std::string& name) {
        for (const ByteRamp& ramp : ramps) {
            for (const bool keepsFourth : {false, true}) {
                std::vector<std::uint8_t> expected = bytes;
                for (std::size_t i = 0; i < bytes.size(); ++i) {
                    if (!keepsFourth || i % 4 != 3) expected[i] = ramp(bytes[i]);
                }
                std::vector<std::uint8_t> mapped = bytes;
                keladjust::rampBytes(
                    ramp,
                    keepsFourth ? keladjust::MappedBytes::threeOfFour : keladjust::MappedBytes::all,
                    mapped.data(), mapped.size());
                ASSERT_EQ(mapped, expected)
                    << name << ", " << int{ramp.low} << ", " << int{ramp.base} << ", "
                    << ramp.slope.whole << ", " << ramp.slope.fraction << ", " << keepsFourth;
            }
        }
    });
}

}  // namespace
