// The eleven global sliders at once: in one call of doAdjust(), where they share a pass, and stage
// by stage.

#include <benchmark/benchmark.h>

#include "support/BenchPicture.h"
#include "support/BenchSettings.h"

namespace {

using keladjust::bench::elevenSettings;

void elevenSettingsInOneCall(benchmark::State& state) {
    CxImage image;
    keladjust::bench::createPhotographLike(image, state.range(0), state.range(1));
    for (auto _ : state) doAdjust(&image, elevenSettings());
}
BENCHMARK(elevenSettingsInOneCall)->Apply(keladjust::bench::pictureSizes);

void elevenSettingsStageByStage(benchmark::State& state) {
    CxImage image;
    keladjust::bench::createPhotographLike(image, state.range(0), state.range(1));
    const _AdjustParam p = elevenSettings();
    for (auto _ : state) {
        temperatureAdjustment(&image, p.temperature);
        tintAdjustment(&image, p.tint);
        exposureAdjustment(&image, p.exposure);
        brightnessAdjustment(&image, p.brightness);
        contrastAdjustment(&image, p.contrast);
        vibranceAdjustment(&image, p.vibrance);
        saturationAdjustment(&image, p.saturation);
        hdrHighlight(&image, p.highlights);
        hdrShadow(&image, p.shadows);
        hdrWhiteLevel(&image, p.whites);
        hdrBlackLevel(&image, p.blacks);
    }
}
BENCHMARK(elevenSettingsStageByStage)->Apply(keladjust::bench::pictureSizes);

void identityRecord(benchmark::State& state) {
    CxImage image;
    keladjust::bench::createPhotographLike(image, state.range(0), state.range(1));
    _AdjustParam p{};
    p.temperature = 11500;
    for (auto _ : state) doAdjust(&image, p);
}
BENCHMARK(identityRecord)->Apply(keladjust::bench::pictureSizes);

}  // namespace
