// One result on every instruction set that the processor has, with any number of threads and in any
// floating-point mode of the caller's: every stage, the whole pipeline and the colour table.

#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <xmmintrin.h>

#include "support/HostPicture.h"
#include "support/InstructionSets.h"
#include "support/StageSettings.h"

namespace {

using namespace keladjust::test;
using Bytes = std::vector<std::uint8_t>;

struct Work {
    std::string name;
    std::function<void(CxImage*)> run;
};

void blurOf(CxImage* i, int radius) {
    stackBlur(i->GetBits(), static_cast<int>(i->GetWidth()), static_cast<int>(i->GetHeight()),
              static_cast<int>(i->bytesPerPixel), radius);
}

// The picture's bytes as one map, its padding included.
template <auto filter>
void asMap(CxImage* i) {
    const auto width = static_cast<int>(i->GetEffWidth());
    const auto height = static_cast<int>(i->GetHeight());
    Bytes result(std::size_t{i->GetEffWidth()} * i->GetHeight());
    filter(i->GetBits(), result.data(), width, height);
    std::memcpy(i->GetBits(), result.data(), result.size());
}

void denoiseMap(const unsigned char* from, unsigned char* to, int width, int height) {
    dctDenoisePlane(from, to, width, height, width, 7.0f);
}

void veilOfMap(const unsigned char* from, unsigned char* to, int width, int height) {
    unsigned char* const veil = estimateVeil(from, from, width, height, 0.7f);
    std::memcpy(to, veil, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    std::free(veil);
    to[0] = mapMaximum(to, width, height);
}

// Stages with a branch for the sign of their setting stand there once for each.
const std::vector<Work>& everyWork() {
    static const std::vector<Work> all = {
        {"temperature, warm", [](CxImage* i) { temperatureAdjustment(i, 14000); }},
        {"temperature, cool", [](CxImage* i) { temperatureAdjustment(i, 8000); }},
        {"tint", [](CxImage* i) { tintAdjustment(i, 60); }},
        {"exposure", [](CxImage* i) { exposureAdjustment(i, 20); }},
        {"brightness, up", [](CxImage* i) { brightnessAdjustment(i, 30); }},
        {"brightness, down", [](CxImage* i) { brightnessAdjustment(i, -30); }},
        {"contrast, up", [](CxImage* i) { contrastAdjustment(i, 40); }},
        {"contrast, down", [](CxImage* i) { contrastAdjustment(i, -40); }},
        {"vibrance, up", [](CxImage* i) { vibranceAdjustment(i, 70); }},
        {"vibrance, down", [](CxImage* i) { vibranceAdjustment(i, -70); }},
        {"saturation, up", [](CxImage* i) { saturationAdjustment(i, 30); }},
        {"saturation, down", [](CxImage* i) { saturationAdjustment(i, -30); }},
        {"highlights", [](CxImage* i) { hdrHighlight(i, -50); }},
        {"highlights, wrapping", [](CxImage* i) { hdrHighlight(i, 450); }},
        {"shadows", [](CxImage* i) { hdrShadow(i, 50); }},
        {"whites", [](CxImage* i) { hdrWhiteLevel(i, 30); }},
        {"blacks", [](CxImage* i) { hdrBlackLevel(i, -30); }},
        {"hue", [](CxImage* i) { hueAdjustment(i, 77); }},
        {"hue of a range", [](CxImage* i) { adjustHueFilter(i, 20, 200, 40); }},
        {"saturation of a range", [](CxImage* i) { adjustSaturationFilter(i, 300, 60, -40); }},
        {"lightness of a range", [](CxImage* i) { adjustBrightnessFilter(i, 100, 260, 50); }},
        {"colour range", [](CxImage* i) { doHSLAdjustFilter(i, 300, 120, 20, 30, 40); }},
        {"vignette, dark", [](CxImage* i) { vignetteAdjustFilter(i, -60, 50, 80, 40, 20, 15); }},
        {"vignette, bright", [](CxImage* i) { vignetteAdjustFilter(i, 60, 80, 20, 60, 0, -15); }},
        {"clarity", [](CxImage* i) { clarity(i, 60); }},
        {"clarity, negative", [](CxImage* i) { clarity(i, -60); }},
        {"sharpen", [](CxImage* i) { sharpen(i, 80); }},
        {"distortion", [](CxImage* i) { distortFilter(i, 30); }},
        {"fringing", [](CxImage* i) { fringingFilter(i, -30); }},
        {"dehaze", [](CxImage* i) { dehaze(i, 60); }},
        {"haze", [](CxImage* i) { dehaze(i, -60); }},
        {"diffuse", [](CxImage* i) { diffuse(i, 60); }},
        {"colour noise", [](CxImage* i) { deNoiseRGB(i, 40); }},
        {"luminance noise", [](CxImage* i) { deNoiseLumiance(i, 40); }},
        {"grain", [](CxImage* i) { addNoiseFilter(i, 40, 60); }},
        {"white balance", [](CxImage* i) { whiteBalanceAdjustment(i, 60); }},
        {"blur, radius 1", [](CxImage* i) { blurOf(i, 1); }},
        {"blur, radius 50", [](CxImage* i) { blurOf(i, 50); }},
        {"15 x 15 mean", asMap<meanFilter15>},
        {"veil", asMap<veilOfMap>},
        {"DCT thresholding", asMap<denoiseMap>},
        {"pipeline, every stage", [](CxImage* i) { doAdjust(i, everyStage().settings); }},
        {"pipeline, per-pixel stages", [](CxImage* i) { doAdjust(i, everyGpuStage().settings); }},
    };
    return all;
}

Bytes resultOf(const Work& work, const HostPicture& original) {
    HostPicture picture(original);
    work.run(picture.image());
    EXPECT_TRUE(picture.guardsIntact()) << work.name;
    return picture.bytes();
}

/// While it lives, the thread rounds as told and flushes denormals to zero.
class OddFloatingPoint {
public:
    explicit OddFloatingPoint(int rounding) {
        std::fesetround(rounding);
        constexpr unsigned flushToZeroAndDenormalsAreZero = 0x8040u;
        _mm_setcsr(_mm_getcsr() | flushToZeroAndDenormalsAreZero);
    }
    ~OddFloatingPoint() {
        std::fesetenv(FE_DFL_ENV);
        constexpr unsigned usual = 0x1F80u;
        _mm_setcsr(usual);
    }
    OddFloatingPoint(const OddFloatingPoint&) = delete;
    OddFloatingPoint& operator=(const OddFloatingPoint&) = delete;
};

TEST(InstructionSets, AllThatTheProcessorHasAreForced) {
    std::vector<std::string> names;
    forEachInstructionSet([&](const std::string& name) { names.push_back(name); });
    const auto has = [&](const std::string& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    // The one for every x86-64 processor, SSE2, is plain C++; which of its two names it has depends
    // on the compiler.
    EXPECT_NE(has("SCALAR"), has("EMU128"));
#ifndef HWY_DISABLED_TARGETS  // as it is for sanitizers
    EXPECT_EQ(has("SSSE3"), __builtin_cpu_supports("ssse3") != 0);
#endif
    EXPECT_EQ(has("SSE4"), __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("pclmul"));
    EXPECT_EQ(has("AVX2"), __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"));
    EXPECT_EQ(has("AVX3"), __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl"));
}

TEST(InstructionSets, DoNotShowInAnyFormat) {
    // Rows are longer than the widest vector and no multiple of any.
    for (const PixelFormat format : everyFormat) {
        HostPicture picture(261, 37, format.bpp, format.format);
        picture.fillRandom(31);
        for (const Work& work : everyWork()) {
            const Bytes usual = resultOf(work, picture);
            forEachInstructionSet([&](const std::string& name) {
                EXPECT_TRUE(resultOf(work, picture) == usual)
                    << work.name << " on " << name << ", " << format.bpp << " bits, format "
                    << format.format;
            });
        }
    }
}

TEST(InstructionSets, DoNotShowOnRowsOfAnyLength) {
    // Every remainder that a vector of up to 64 bytes can leave.
    for (unsigned width = 1; width <= 70; ++width) {
        HostPicture picture(width, 9, 32, IMAGE_FORMAT_BGRA);
        picture.fillRandom(width);
        for (const Work& work : everyWork()) {
            const Bytes usual = resultOf(work, picture);
            forEachInstructionSet([&](const std::string& name) {
                EXPECT_TRUE(resultOf(work, picture) == usual)
                    << work.name << " on " << name << ", " << width << " columns";
            });
        }
    }
}

TEST(InstructionSets, DoNotShowWithAnyNumberOfThreads) {
    HostPicture picture(517, 203, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(23);
    for (const Work& work : everyWork()) {
        setMaxThreads(1);
        const Bytes usual = resultOf(work, picture);
        forEachInstructionSet([&](const std::string& name) {
            for (const int threads : {2, 3, 16}) {
                setMaxThreads(threads);
                EXPECT_TRUE(resultOf(work, picture) == usual)
                    << work.name << " on " << name << ", " << threads << " threads";
            }
        });
    }
    setMaxThreads(0);
}

TEST(InstructionSets, DoNotShowInOddFloatingPointModes) {
    HostPicture picture(261, 37, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(29);
    for (const Work& work : everyWork()) {
        const Bytes usual = resultOf(work, picture);
        forEachInstructionSet([&](const std::string& name) {
            for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
                const OddFloatingPoint mode(rounding);
                EXPECT_TRUE(resultOf(work, picture) == usual)
                    << work.name << " on " << name << ", rounding mode " << rounding;
            }
        });
    }
}

TEST(InstructionSets, DoNotShowInTheColourTable) {
    constexpr std::size_t floats = std::size_t{3} * 32 * 32 * 32;
    const _AdjustParam settings = everyGpuStage().settings;  // computed in the usual mode
    const auto table = [&] {
        initOgreRunTime(nullptr, nullptr);
        const float* const values = getLut3dData(settings);
        const std::vector<float> copy(values, values + floats);
        releaseOgre();
        return copy;
    };
    const std::vector<float> usual = table();
    forEachInstructionSet([&](const std::string& name) {
        for (const int rounding : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
            const OddFloatingPoint mode(rounding);
            const std::vector<float> each = table();
            EXPECT_EQ(std::memcmp(each.data(), usual.data(), floats * sizeof(float)), 0)
                << name << ", rounding mode " << rounding;
        }
    });
}

}  // namespace
