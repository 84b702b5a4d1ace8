// One result on every instruction set that the processor has, with any number of threads and in any
// floating-point mode of the caller's: every stage, the whole pipeline and the colour table.

#include "support/InstructionSets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "filters/Stages.h"
#include "support/EveryStage.h"
#include "support/HostPicture.h"
#include "support/OddFloatingPoint.h"
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

// Every stage of the catalogue up and down, and what it does not hold: stages that are called by
// themselves, building blocks, settings at which a stage does something else, all at once.
const std::vector<Work>& everyWork() {
    static const std::vector<Work> all = [] {
        std::vector<Work> works;
        for (const keladjust::Stage& stage : keladjust::stages) {
            for (const float strength : {0.6f, -0.6f}) {
                const _AdjustParam record = stageAlone(stage, strength);
                if (!stage.isActive(record)) continue;
                works.push_back(
                    {std::string(stage.name.c_str()) + (strength > 0 ? ", up" : ", down"),
                     [&stage, record](CxImage* i) { stage.run(i, record); }});
            }
        }
        const std::vector<Work> others = {
            {"highlights, wrapping", [](CxImage* i) { hdrHighlight(i, 450); }},
            {"hue", [](CxImage* i) { hueAdjustment(i, 77); }},
            {"hue of a range", [](CxImage* i) { adjustHueFilter(i, 20, 200, 40); }},
            {"saturation of a range", [](CxImage* i) { adjustSaturationFilter(i, 300, 60, -40); }},
            {"lightness of a range", [](CxImage* i) { adjustBrightnessFilter(i, 100, 260, 50); }},
            {"vignette, round",
             [](CxImage* i) { vignetteAdjustFilter(i, -60, 50, 80, 40, 20, 15); }},
            {"grain", [](CxImage* i) { addNoiseFilter(i, 40, 60); }},
            {"white balance", [](CxImage* i) { whiteBalanceAdjustment(i, 60); }},
            {"blur, radius 1", [](CxImage* i) { blurOf(i, 1); }},
            {"blur, radius 50", [](CxImage* i) { blurOf(i, 50); }},
            {"15 x 15 mean", asMap<meanFilter15>},
            {"veil", asMap<veilOfMap>},
            {"DCT thresholding", asMap<denoiseMap>},
            {"pipeline, every stage", [](CxImage* i) { doAdjust(i, everyStage().settings); }},
            {"pipeline, per-pixel stages",
             [](CxImage* i) { doAdjust(i, everyGpuStage().settings); }},
        };
        works.insert(works.end(), others.begin(), others.end());
        return works;
    }();
    return all;
}

Bytes resultOf(const Work& work, const HostPicture& original) {
    HostPicture picture(original);
    work.run(picture.image());
    EXPECT_TRUE(picture.guardsIntact()) << work.name;
    return picture.bytes();
}

TEST(InstructionSets, AllThatTheProcessorHasAreForced) {
    std::vector<std::string> names;
    forEachInstructionSet([&](const std::string& name) { names.push_back(name); });
#if defined(__aarch64__)
    // Every processor has it, so nothing else is compiled.
    EXPECT_EQ(names, std::vector<std::string>{"NEON"});
#else
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
#endif
}

TEST(InstructionSets, DoNotShowInAnyFormat) {
    // Rows are longer than what is taken at a time, and no multiple of any vector.
    for (const PixelFormat format : everyFormat) {
        HostPicture picture(2111, 9, format.bpp, format.format);
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
                const auto before = OddFloatingPoint::control();
                const bool same = resultOf(work, picture) == usual;
                EXPECT_EQ(OddFloatingPoint::control(), before) << work.name;
                EXPECT_EQ(std::fegetround(), rounding) << work.name;
                EXPECT_TRUE(same) << work.name << " on " << name << ", rounding mode " << rounding;
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

// With the processor's best instructions, and pictures of few columns as well.
TEST(Threads, DoNotShow) {
    for (const auto& [width, height] : {std::pair{401u, 303u}, {3u, 30000u}}) {
        HostPicture picture(width, height, 32, IMAGE_FORMAT_BGRA);
        picture.fillRandom(23);
        for (const Work& work : everyWork()) {
            setMaxThreads(1);
            const Bytes alone = resultOf(work, picture);
            for (const int threads : {2, 16, 0, -5}) {
                setMaxThreads(threads);
                EXPECT_TRUE(resultOf(work, picture) == alone) << work.name << ", " << threads;
            }
        }
    }
    setMaxThreads(0);
}

}  // namespace
