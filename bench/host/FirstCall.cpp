// A stage's first call in a process beside the later ones. Each iteration runs in a process of its
// own, in which nothing of the library has run before.

#include <benchmark/benchmark.h>
#include <keladjust/keladjust.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "support/BenchPicture.h"
#include "support/BenchSettings.h"

namespace {

struct Stage {
    const char* name;
    void (*run)(CxImage*);
};

constexpr Stage stages[] = {
    {"exposure", [](CxImage* i) { exposureAdjustment(i, 10); }},
    {"saturation", [](CxImage* i) { saturationAdjustment(i, 20); }},
    {"eleven settings", [](CxImage* i) { doAdjust(i, keladjust::bench::elevenSettings()); }},
    {"clarity", [](CxImage* i) { clarity(i, 100); }},
    {"sharpen", [](CxImage* i) { sharpen(i, 80); }},
    {"denoise", [](CxImage* i) { deNoiseRGB(i, 30); }},
    {"distortion", [](CxImage* i) { distortFilter(i, 20); }},
    {"fringing", [](CxImage* i) { fringingFilter(i, 20); }},
};

double secondsOf(const Stage& stage, CxImage* image) {
    const auto start = std::chrono::steady_clock::now();
    stage.run(image);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// In seconds; 0 if there was no process to measure them in.
struct Times {
    double first = 0;
    double later = 0;  // the median of five
};

Times measure(const Stage& stage, CxImage& original) {
    CxImage copy;
    copy.Copy(original);  // the pages of the process before would be copied at the first write
    CxImage* const image = &copy;
    Times times{secondsOf(stage, image)};
    std::vector<double> later(5);
    for (double& each : later) each = secondsOf(stage, image);
    std::nth_element(later.begin(), later.begin() + 2, later.end());
    times.later = later[2];
    return times;
}

Times measureInNewProcess(const Stage& stage, CxImage& image) {
    Times times;
    int ends[2];
    if (pipe(ends) != 0) return times;
    const pid_t child = fork();
    if (child == 0) {
        times = measure(stage, image);
        const bool told = write(ends[1], &times, sizeof times) == sizeof times;
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    if (child < 0 || read(ends[0], &times, sizeof times) != sizeof times) times = Times{};
    close(ends[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    return times;
}

// The row's time is the first call's.
void firstCall(benchmark::State& state, const Stage& stage) {
    CxImage& image = keladjust::bench::photographLike(state.range(0), state.range(1));
    for (auto _ : state) {
        const Times times = measureInNewProcess(stage, image);
        if (times.first == 0) {
            state.SkipWithError("no process to measure in");
            return;
        }
        state.SetIterationTime(times.first);
        state.counters["later_ms"] = times.later * 1e3;
    }
}

const bool added = [] {
    for (const Stage& stage : stages) {
        benchmark::RegisterBenchmark((std::string("first call/") + stage.name).c_str(),
                                     [&stage](benchmark::State& state) { firstCall(state, stage); })
            ->Args({4000, 3000})
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace
