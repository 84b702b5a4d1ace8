// Grain: grey noise of a fixed pattern. Diffuse: a gain and, for positive settings, a slight blur.

#include <keladjust/CxImage.h>

#include <array>
#include <cmath>
#include <cstdint>

#include "ImageFormat/RawWalk.h"
#include "filters/Rounding.h"
#include "filters/StackBlur.h"
#include "filters/StageForms.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

constexpr std::size_t pixelsPerThread = 1 << 15;

// One or several steps of a linear congruential generator modulo 2^32.
struct Steps {
    std::uint32_t factor = 1;
    std::uint32_t addend = 0;

    constexpr std::uint32_t operator()(std::uint32_t state) const {
        return state * factor + addend;
    }
    constexpr Steps then(Steps next) const { return {factor * next.factor, next(addend)}; }
};

constexpr Steps repeated(Steps step, std::uint64_t times) {
    Steps all;
    for (; times != 0; times >>= 1) {
        if (times & 1) all = all.then(step);
        step = step.then(step);
    }
    return all;
}

// The generator of the Windows C runtime, whose pattern the grain has on every system: seeded with
// 0, each draw is bits 16 to 30 of the new state.
constexpr Steps oneDraw{214013, 2531011};
constexpr std::uint32_t seed = 0;

std::uint32_t drawOf(std::uint32_t state) {
    return (state >> 16) & 0x7FFF;
}

// The first of a pixel's five draws is thrown away.
constexpr std::uint64_t drawsPerPixel = 5;

// The sum of a pixel's other four draws, from the generator's state before the pixel.
std::uint32_t sumOfDraws(std::uint32_t state) {
    constexpr Steps second = repeated(oneDraw, 2);
    constexpr Steps third = repeated(oneDraw, 3);
    constexpr Steps fourth = repeated(oneDraw, 4);
    constexpr Steps fifth = repeated(oneDraw, 5);
    return drawOf(second(state)) + drawOf(third(state)) + drawOf(fourth(state)) +
           drawOf(fifth(state));
}

// Sums of four draws as numbers of mean 0 and variance 1: sqrt(3) / 32767 and 2 sqrt(3).
float standardised(std::uint32_t sum) {
    return static_cast<float>(static_cast<std::int32_t>(sum) * 5.28596089837e-5 - 3.46410161514);
}

// Pixels side by side, each with a generator of its own, so that the loop over them becomes
// vectors.
constexpr std::size_t lanes = 16;

/// The grain of one pixel after another.
class GrainSource {
public:
    GrainSource(std::size_t firstPixel, float scale) : scale_(scale) {
        for (std::size_t i = 0; i < lanes; ++i) {
            states_[i] = repeated(oneDraw, drawsPerPixel * (firstPixel + i))(seed);
        }
    }

    void next(std::array<float, lanes>& grain) {
        constexpr Steps toNextGroup = repeated(oneDraw, drawsPerPixel * lanes);
        for (std::size_t i = 0; i < lanes; ++i) {
            grain[i] = standardised(sumOfDraws(states_[i])) * scale_ * 127.0f;
            states_[i] = toNextGroup(states_[i]);
        }
    }

private:
    float scale_;
    std::array<std::uint32_t, lanes> states_;
};

template <class Step>
void grainPixels(const RawWalk& walk, Step step, std::size_t begin, std::size_t end, float scale) {
    const std::size_t channels = std::min<std::size_t>(3, step);
    GrainSource source(begin, scale);
    std::array<float, lanes> grain;
    for (std::size_t i = begin; i < end; i += lanes) {
        source.next(grain);
        const std::size_t count = std::min(lanes, end - i);
        for (std::size_t j = 0; j < count; ++j) {
            std::uint8_t* const pixel = walk.first + (i + j) * step;
            for (std::size_t c = 0; c < channels; ++c) {
                pixel[c] = clampToByte(static_cast<float>(pixel[c]) + grain[j]);
            }
        }
    }
}

void addGrain(CxImage& image, float amount, float size) {
    const float scale = size / 100.0f * (amount / 100.0f);
    const RawWalk walk = rawWalkOf(image);
    if (walk.channels == 0) return;
    platform::parallelBands(
        walk.count, platform::bandCount(walk.count, pixelsPerThread),
        [&](std::size_t, std::size_t begin, std::size_t end) {
            withStep(walk.step, [&](auto step) { grainPixels(walk, step, begin, end, scale); });
        });
}

// 1 + |sin(setting * pi / 1440)|, by way of the cosine. The cosine is taken in double and narrowed
// once, so that C libraries agree on it.
float diffuseGain(float setting) {
    const float angle = 1.5707964f - setting * 3.1415927f / 1440.0f;
    return std::fabs(static_cast<float>(std::cos(static_cast<double>(angle)))) + 1.0f;
}

void applyDiffuse(CxImage& image, float setting) {
    constexpr int blurRadius = 1;
    const RawWalk walk = rawWalkOf(image);
    if (walk.channels == 0) return;
    // Only positive settings blur.
    StackBlur blur(image.width, image.height, walk.step, setting > 0.0f ? blurRadius : 0);
    const float gain = diffuseGain(setting);
    ByteTable table;
    for (unsigned in = 0; in < table.size(); ++in) {
        table[in] = clampToByte(static_cast<float>(in) * gain);
    }
    mapRawWalk(image, table);
    blur.alongRows(image.pBits);
    blur.alongColumns(image.pBits);
}

}  // namespace

}  // namespace keladjust

CxImage* addNoiseFilter(CxImage* image, float amount, float size) {
    return keladjust::exportedForm(image, [&] {
        if (image == nullptr || amount == 0.0f || size == 0.0f) return;
        keladjust::addGrain(*image, amount, size);
    });
}

CxImage* diffuse(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&] {
        if (image != nullptr && amount != 0.0f) keladjust::applyDiffuse(*image, amount);
    });
}
