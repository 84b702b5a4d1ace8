#include "support/Rows.h"

#include <benchmark/benchmark.h>

#include "support/BenchPicture.h"

namespace keladjust::bench {

namespace {

void measure(benchmark::State& state, const Row& row) {
    CxImage& original = photographLike(state.range(0), state.range(1));
    CxImage image;
    image.Copy(original);
    Work work = row.makeWork(image);
    work.prepare(image);
    work.run(image);
    for (auto _ : state) {
        state.PauseTiming();
        image.Copy(original);
        work.prepare(image);
        state.ResumeTiming();
        work.run(image);
    }
    state.counters["megapixels/s"] =
        benchmark::Counter(static_cast<double>(state.range(0) * state.range(1)) / 1e6,
                           benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

bool addRows(const std::string& side, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        benchmark::RegisterBenchmark((row.stage + "/" + side).c_str(),
                                     [row](benchmark::State& state) { measure(state, row); })
            ->Apply(pictureSizes)
            ->MeasureProcessCPUTime();
    }
    return true;
}

}  // namespace keladjust::bench
