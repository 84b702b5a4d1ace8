// How much memory a stage needs beyond the picture, at 12 and 100 megapixels: a row's counters are
// the peak in MiB and in copies of the picture.

#include <benchmark/benchmark.h>

#include <string>

#include "support/BenchPicture.h"
#include "support/ProcessMemory.h"

namespace {

struct Row {
    const char* name;
    CxImage* (*run)(CxImage*);
};

CxImage* wholePipeline(CxImage* image) {
    _AdjustParam p{};
    p.temperature = 9000;
    p.exposure = 10;
    p.clarity = 30;
    p.sharpen = 40;
    p.dehaze = 30;
    p.diffuse = 20;
    p.colourNoiseReduction = 20;
    return doAdjust(image, p);
}

constexpr Row rows[] = {
    {"exposure", [](CxImage* i) { return exposureAdjustment(i, 10); }},
    {"vignette", [](CxImage* i) { return vignetteAdjustFilter(i, -50, 50, 50, 50, 0, 0); }},
    {"clarity", [](CxImage* i) { return clarity(i, 100); }},
    {"sharpen", [](CxImage* i) { return sharpen(i, 80); }},
    {"distortion", [](CxImage* i) { return distortFilter(i, 20); }},
    {"fringing", [](CxImage* i) { return fringingFilter(i, 20); }},
    {"dehaze", [](CxImage* i) { return dehaze(i, 50); }},
    {"diffuse", [](CxImage* i) { return diffuse(i, 50); }},
    {"deNoiseRGB", [](CxImage* i) { return deNoiseRGB(i, 30); }},
    {"deNoiseLumiance", [](CxImage* i) { return deNoiseLumiance(i, 30); }},
    {"grain", [](CxImage* i) { return addNoiseFilter(i, 30, 50); }},
    {"white balance", [](CxImage* i) { return whiteBalanceAdjustment(i, 50); }},
    {"pipeline without lens stages", wholePipeline},
};

void measure(benchmark::State& state, const Row& row) {
    CxImage image;
    keladjust::bench::createPhotographLike(image, state.range(0), state.range(1));
    for (auto _ : state) {
        const keladjust::bench::MemoryRise rise;
        row.run(&image);
        const double extra = rise.peak();
        state.counters["MiB"] = extra / (1 << 20);
        state.counters["copies"] = extra / static_cast<double>(image.GetSize());
    }
}

const bool registered = [] {
    for (const Row& row : rows) {
        benchmark::RegisterBenchmark((std::string("memory/") + row.name).c_str(),
                                     [&row](benchmark::State& state) { measure(state, row); })
            ->Args({4000, 3000})
            ->Args({11552, 8656})
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
    return true;
}();

}  // namespace
