// The colour table: baking it, and baking and writing it as a cube file, the latter beside the same
// bake written number by number with fprintf(). CPU time is that of all threads.

#include <benchmark/benchmark.h>
#include <keladjust/keladjust.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "support/BenchSettings.h"

namespace {

namespace fs = std::filesystem;

_AdjustParam everySetting() {
    _AdjustParam p = keladjust::bench::elevenSettings();
    float centre = 0;
    for (_AdjustColourRange& range : p.range) {
        range = {centre, centre + 60, 10, 20, -15};
        centre += 40;
    }
    return p;
}

void bake(const char*) {
    benchmark::DoNotOptimize(getLut3dData(everySetting()));
}

void bakeAndWrite(const char* path) {
    writeLut3DFile(everySetting(), path);
}

void bakeAndPrint(const char* path) {
    const float* const table = getLut3dData(everySetting());
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path, "wt"));
    if (!file) return;
    std::fputs("LUT_3D_SIZE 32\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n", file.get());
    for (int red = 0; red < 32; ++red) {
        for (int green = 0; green < 32; ++green) {
            for (int blue = 0; blue < 32; ++blue) {
                const float* const c =
                    table + 3 * (8192 * (red / 8) + 256 * green + 32 * (red % 8) + blue);
                std::fprintf(file.get(), "%.8f %.8f %.8f\n", static_cast<double>(c[0]),
                             static_cast<double>(c[1]), static_cast<double>(c[2]));
            }
        }
    }
}

template <auto run>
void measure(benchmark::State& state) {
    initOgreRunTime(nullptr, nullptr);
    const fs::path path = fs::temp_directory_path() /
                          ("keladjust-bench-" + std::to_string(std::random_device()()) + ".cube");
    const std::string name = path.string();
    for (auto _ : state) run(name.c_str());
    fs::remove(path);
    releaseOgre();
}

void wholeTable(benchmark::internal::Benchmark* row) {
    row->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
}

BENCHMARK(measure<bake>)->Name("colour table/library")->Apply(wholeTable);
BENCHMARK(measure<bakeAndWrite>)->Name("colour table and cube file/library")->Apply(wholeTable);
BENCHMARK(measure<bakeAndPrint>)->Name("colour table and cube file/naive")->Apply(wholeTable);

}  // namespace
