#include "support/Choices.h"

#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>

#include "filters/Stages.h"
#include "support/StageSettings.h"

namespace keladjust::fuzz {

namespace {

// What a byte decides that many values share: the same for every run of a target.
constexpr std::array oddNumbers = {
    std::numeric_limits<float>::quiet_NaN(),
    std::numeric_limits<float>::infinity(),
    -std::numeric_limits<float>::infinity(),
    std::numeric_limits<float>::max(),
    std::numeric_limits<float>::lowest(),
    std::numeric_limits<float>::denorm_min(),
    -0.0f,
    1e30f,
    -2147483648.0f,
    255.0f,
    100.0f,
    -100.0f,
    0.5f,
    1.0f,
};

void putSlot(_AdjustParam& record, int slot, std::uint32_t bits) {
    std::memcpy(reinterpret_cast<char*>(&record) + 4 * slot, &bits, sizeof bits);
}

std::uint32_t bitsOf(const Setting& setting, float value) {
    if (setting.isInteger) return static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
    return std::bit_cast<std::uint32_t>(value);
}

// A side from a byte: nine in ten below 18, all below 71.
unsigned chooseSide(FuzzedDataProvider& input) {
    const auto byte = input.ConsumeIntegral<std::uint8_t>();
    return byte < 232 ? byte % 18u : 18u + (byte - 232u) * 52u / 23u;
}

struct PixelFormat {
    unsigned bpp;
    _ImagePixelFormat format;
};
constexpr PixelFormat meaningful[] = {
    {8, IMAGE_FORMAT_GRAY}, {16, IMAGE_FORMAT_RGB},  {16, IMAGE_FORMAT_BGR}, {24, IMAGE_FORMAT_RGB},
    {24, IMAGE_FORMAT_BGR}, {32, IMAGE_FORMAT_RGBA}, {32, IMAGE_FORMAT_BGRA}};

PixelFormat chooseFormat(FuzzedDataProvider& input) {
    const auto byte = input.ConsumeIntegral<std::uint8_t>();
    if (byte < 224) return meaningful[byte % std::size(meaningful)];
    return {input.ConsumeIntegralInRange(1u, 130u),
            static_cast<_ImagePixelFormat>(input.ConsumeIntegralInRange(0, 5))};
}

// Given bytes first; behind them noise, slopes, or one colour over and over.
std::vector<std::uint8_t> choosePixels(FuzzedDataProvider& input, std::size_t size,
                                       std::size_t rowBytes) {
    const auto kind = input.ConsumeIntegralInRange(0, 3);
    const auto seed = input.ConsumeIntegral<std::uint8_t>();
    std::vector<std::uint8_t> bytes = input.ConsumeBytes<std::uint8_t>(size);
    const std::size_t given = bytes.size();
    bytes.resize(size);
    std::minstd_rand noise(seed + 1u);
    for (std::size_t i = given; i < size; ++i) {
        const std::size_t x = i % rowBytes;
        const std::size_t y = i / rowBytes;
        switch (kind) {
            case 0:
                bytes[i] = static_cast<std::uint8_t>(noise() >> 16);
                break;
            case 1:
                bytes[i] = static_cast<std::uint8_t>(seed + x / 4 + y * 2);
                break;
            case 2:
                bytes[i] = static_cast<std::uint8_t>(seed + (x / 16 + y / 9) % 2 * 90 +
                                                     (noise() >> 16) % 8);
                break;
            default:
                bytes[i] = given == 0 ? seed : bytes[i - given];
        }
    }
    return bytes;
}

}  // namespace

float anyFloat(FuzzedDataProvider& input) {
    const auto byte = input.ConsumeIntegral<std::uint8_t>();
    if (byte < oddNumbers.size()) return oddNumbers[byte];
    return std::bit_cast<float>(input.ConsumeIntegral<std::uint32_t>());
}

const Stage& chooseStage(FuzzedDataProvider& input) {
    return stages.at(input.ConsumeIntegralInRange<std::size_t>(0, stages.size() - 1));
}

void chooseSettings(FuzzedDataProvider& input, const Stage& stage, _AdjustParam& record) {
    for (std::size_t i = 0; i < stage.settingCount; ++i) {
        const Setting& setting = stage.settingRows[i];
        const auto byte = input.ConsumeIntegral<std::uint8_t>();
        std::uint32_t bits = 0;
        if (byte < 192) {
            const float share = static_cast<float>(byte) / 191.0f;
            bits = bitsOf(setting, setting.lowest + share * (setting.highest - setting.lowest));
        } else if (byte < 208) {
            bits = bitsOf(setting, setting.identity);
        } else if (setting.isInteger) {
            bits = input.ConsumeIntegral<std::uint32_t>();
        } else {
            bits = std::bit_cast<std::uint32_t>(anyFloat(input));
        }
        putSlot(record, stage.firstSlot + static_cast<int>(i), bits);
    }
}

_AdjustParam chooseRecord(FuzzedDataProvider& input, const Stage& (*choose)(FuzzedDataProvider&)) {
    _AdjustParam record = test::identity;
    const auto choice = input.ConsumeIntegral<std::uint8_t>();
    const int count = choice % 4;
    if (choice > 250) {
        for (const Stage& stage : stages) chooseSettings(input, stage, record);
    } else {
        for (int i = 0; i < count; ++i) chooseSettings(input, choose(input), record);
    }
    return record;
}

std::string textOf(const Stage& stage, const _AdjustParam& record) {
    std::string text = stage.name.c_str();
    for (std::size_t i = 0; i < stage.settingCount; ++i) {
        char number[48];
        const int slot = stage.firstSlot + static_cast<int>(i);
        if (stage.settingRows[i].isInteger) {
            std::snprintf(number, sizeof number, " %d", readSlot<std::int32_t>(record, slot));
        } else {
            std::snprintf(number, sizeof number, " %.9g",
                          static_cast<double>(readSlot<float>(record, slot)));
        }
        text += number;
    }
    return text;
}

void chooseLooseSettings(FuzzedDataProvider& input, std::size_t count, _AdjustParam& record) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto whole = input.ConsumeIntegral<std::int16_t>();
        const float value =
            whole >= -999 && whole <= 999 ? static_cast<float>(whole) / 2.0f : anyFloat(input);
        putSlot(record, firstLooseSlot + static_cast<int>(i), std::bit_cast<std::uint32_t>(value));
    }
}

ChosenPicture choosePicture(FuzzedDataProvider& input) {
    constexpr std::uint16_t large = 0x4C54;  // rarely met by chance
    const bool isLarge = input.ConsumeIntegral<std::uint16_t>() == large;
    const PixelFormat format = chooseFormat(input);
    unsigned width = 0;
    unsigned height = 0;
    if (isLarge) {
        const bool isTall = input.ConsumeBool();
        const unsigned longer =
            480u + 32u * input.ConsumeIntegralInRange(0u, 31u) + chooseSide(input) % 32u;
        width = isTall ? 70u : longer;
        height = isTall ? longer : 70u;
    } else {
        width = chooseSide(input);
        height = chooseSide(input);
    }
    const std::size_t rowBytes = (std::size_t{width} * format.bpp + 31) / 32 * 4;
    return {width, height, format.bpp, format.format,
            choosePixels(input, rowBytes * height, rowBytes == 0 ? 1 : rowBytes)};
}

}  // namespace keladjust::fuzz
