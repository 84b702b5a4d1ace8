#include "support/TableRows.h"

#include <benchmark/benchmark.h>
#include <keladjust/keladjust.h>

#include <filesystem>
#include <random>

namespace keladjust::bench {

namespace {

void measure(benchmark::State& state, const std::function<void(const char*)>& run) {
    initOgreRunTime(nullptr, nullptr);  // the library makes tables only between this and its end
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("keladjust-bench-" + std::to_string(std::random_device()()) + ".cube");
    const std::string name = path.string();
    for (auto _ : state) run(name.c_str());
    std::filesystem::remove(path);
    releaseOgre();
}

}  // namespace

bool addTableRow(const std::string& task, const std::string& side,
                 std::function<void(const char* path)> run) {
    benchmark::RegisterBenchmark((task + "/" + side).c_str(),
                                 [run](benchmark::State& state) { measure(state, run); })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->MeasureProcessCPUTime();
    return true;
}

}  // namespace keladjust::bench
