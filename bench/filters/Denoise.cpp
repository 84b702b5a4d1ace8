// Noise reduction beside libavfilter's filter of the same kind: dctdnoiz, blocks of 8 x 8 at every
// pixel.

#include <benchmark/benchmark.h>

#include "support/BenchPicture.h"
#ifdef KELADJUST_BENCH_LIBAVFILTER
#include "support/AvFilter.h"
#endif

namespace {

constexpr float setting = 100.0f / 3.0f;  // a noise level of 5

void countPixels(benchmark::State& state) {
    state.counters["megapixels/s"] =
        benchmark::Counter(static_cast<double>(state.range(0) * state.range(1)) / 1e6,
                           benchmark::Counter::kIsIterationInvariantRate);
}

template <auto stage>
void denoiseLibrary(benchmark::State& state) {
    CxImage original;
    keladjust::bench::createPhotographLike(original, state.range(0), state.range(1));
    CxImage image;
    for (auto _ : state) {
        state.PauseTiming();
        image.Copy(original);
        state.ResumeTiming();
        stage(&image, setting);
    }
    countPixels(state);
}
BENCHMARK(denoiseLibrary<deNoiseRGB>)
    ->Name("deNoiseRGB/library")
    ->Apply(keladjust::bench::pictureSizes);
BENCHMARK(denoiseLibrary<deNoiseLumiance>)
    ->Name("deNoiseLumiance/library")
    ->Apply(keladjust::bench::pictureSizes);

#ifdef KELADJUST_BENCH_LIBAVFILTER
void denoiseLibavfilter(benchmark::State& state) {
    CxImage picture;
    keladjust::bench::createPhotographLike(picture, state.range(0), state.range(1));
    constexpr int everyCore = 0;
    keladjust::bench::AvFilter filter("dctdnoiz=s=5:n=3:overlap=7", picture, everyCore);
    for (auto _ : state) filter.run();
    countPixels(state);
}
BENCHMARK(denoiseLibavfilter)
    ->Name("deNoiseRGB/libavfilter")
    ->Apply(keladjust::bench::pictureSizes);
#endif

}  // namespace
