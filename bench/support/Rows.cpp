#include "support/Rows.h"

#include <benchmark/benchmark.h>

#include "support/BenchPicture.h"
#include "support/Photograph.h"

namespace keladjust::bench {

namespace {

using Picture = CxImage& (*)(std::int64_t columns, std::int64_t rows);

void measure(benchmark::State& state, const Row& row, Picture picture) {
    CxImage& original = picture(state.range(0), state.range(1));
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

void addRow(const std::string& name, const Row& row, Picture picture) {
    benchmark::RegisterBenchmark(
        name.c_str(), [row, picture](benchmark::State& state) { measure(state, row, picture); })
        ->Apply(pictureSizes)
        ->MeasureProcessCPUTime();
}

}  // namespace

bool addRows(const std::string& side, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        addRow(row.stage + "/" + side, row, photographLike);
        if (row.onPhotographToo) addRow(row.stage + ", photograph/" + side, row, photograph);
    }
    return true;
}

}  // namespace keladjust::bench
