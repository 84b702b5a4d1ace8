// Several settings at once: in one call of doAdjust(), where they share a pass, and stage by stage;
// and what a call costs that has nothing to do.

#include <benchmark/benchmark.h>
#include <keladjust/keladjust.h>

#include "filters/Stages.h"
#include "support/BenchPicture.h"
#include "support/BenchSettings.h"
#include "support/Rows.h"

namespace {

using keladjust::bench::addRows;
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

}  // namespace
