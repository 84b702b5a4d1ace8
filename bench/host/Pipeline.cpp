// Several settings at once: in one call of doAdjust(), where they share a pass, and stage by stage;
// how time grows with the picture; and what a call costs that has nothing to do.

#include <benchmark/benchmark.h>
#include <keladjust/keladjust.h>

#include <functional>
#include <string>

#include "filters/Stages.h"
#include "support/BenchPicture.h"
#include "support/BenchSettings.h"
#include "support/Catalogued.h"
#include "support/Rows.h"

namespace {

using keladjust::bench::addRows;
using keladjust::bench::Catalogued;
using keladjust::bench::elevenSettings;
using keladjust::bench::everyPixelSetting;
using keladjust::bench::lookSettings;
using keladjust::bench::photographLike;
using keladjust::bench::plainly;
using keladjust::bench::previewSettings;

template <auto settings>
void adjust(CxImage& image) {
    doAdjust(&image, settings());
}

void elevenStageByStage(CxImage& image) {
    const _AdjustParam p = elevenSettings();
    for (const keladjust::Stage& stage : keladjust::stages) {
        if (stage.wing == keladjust::Wing::tone) stage.run(&image, p);
    }
}

const bool added =
    addRows("library", {{"eleven settings", plainly(adjust<elevenSettings>), true},
                        {"preview", plainly(adjust<previewSettings>), true},
                        {"every per-pixel slider", plainly(adjust<everyPixelSetting>), true},
                        {"look", plainly(adjust<lookSettings>), true}}) &&
    addRows("stage by stage", {{"eleven settings", plainly(elevenStageByStage)}});

void identity(benchmark::State& state) {
    _AdjustParam p{};
    p.temperature = 11500;
    CxImage& image = photographLike(state.range(0), state.range(1));
    for (auto _ : state) doAdjust(&image, p);
}
BENCHMARK(identity)
    ->Name("identity/library")
    ->Apply(keladjust::bench::pictureSizes)
    ->Unit(benchmark::kMicrosecond);

struct Growing {
    const char* name;
    std::function<void(CxImage&)> run;
};

const Growing growing[] = {
    {"exposure", Catalogued("exposure", 10)}, {"eleven settings", adjust<elevenSettings>},
    {"sharpen", Catalogued("sharpen", 80)},   {"clarity", Catalogued("clarity", 100)},
    {"dehaze", Catalogued("dehaze", 50)},     {"denoise", Catalogued("colour-noise-reduction", 30)},
};

// In place, over and over: what the pixels are makes no difference to these.
void growth(benchmark::State& state, const Growing& stage) {
    CxImage& image = photographLike(state.range(0), state.range(1));
    for (auto _ : state) stage.run(image);
    state.counters["ns/pixel"] = benchmark::Counter(
        static_cast<double>(state.range(0) * state.range(1)) / 1e9,
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

const bool growthAdded = [] {
    for (const Growing& stage : growing) {
        benchmark::RegisterBenchmark((std::string("growth/") + stage.name).c_str(),
                                     [&stage](benchmark::State& state) { growth(state, stage); })
            ->Args({4000, 3000})
            ->Args({11552, 8656})
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
    return true;
}();

}  // namespace
