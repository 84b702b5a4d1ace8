// An adjustment on the GPU path and on the CPU path, and where the time of the GPU path goes. Needs
// a display: tests/support/with-display lends one.

#include <GL/gl.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <iterator>

#include "engine/EffectFactory.h"
#include "engine/KelOgreEffectBase.h"
#include "engine/OgreEngine.h"
#include "host/GpuEngine.h"
#include "host/GpuPipeline.h"
#include "host/Pipeline.h"
#include "shaders/Programs.h"
#include "support/BenchPicture.h"
#include "support/StageSettings.h"

namespace {

using keladjust::GpuEngine;
using keladjust::bench::createPhotographLike;
using keladjust::test::everyGpuStage;
using keladjust::test::only;

/// Adds the time of its own life to a sum of milliseconds. The driver's work that it covers is done
/// by then.
class Stopwatch {
public:
    explicit Stopwatch(double& sum) : sum_(sum) {}
    ~Stopwatch() {
        glFinish();
        sum_ += std::chrono::duration<double, std::milli>(Clock::now() - start_).count();
    }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

private:
    using Clock = std::chrono::steady_clock;
    double& sum_;
    Clock::time_point start_ = Clock::now();
};

/// Milliseconds.
struct Times {
    double pass = 0, render = 0, readBack = 0;
};

/// An effect that tells how long its passes take, and what in them.
class TimedEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class TimedEffect";
    static inline Times times;  ///< of all effects

    void process(unsigned char* output, unsigned char* input, std::uint32_t bytes) override {
        const Stopwatch watch(times.pass);
        KelOgreEffectBase::process(output, input, bytes);
    }
    bool renderOneFrame() override {
        glFinish();
        const Stopwatch watch(times.render);
        return KelOgreEffectBase::renderOneFrame();
    }
    bool getPixels(_ImageParam* result) override {
        const Stopwatch watch(times.readBack);
        return KelOgreEffectBase::getPixels(result);
    }
};

DYN_CLASS::CFactory<TimedEffect> timedEffects;
const DYN_CLASS::CFactoryManager timedEffectsPlace{&timedEffects};

/// The engine with timed effects; null if it does not come up.
const GpuEngine* timedEngine() {
    namespace shaders = keladjust::shaders;
    static keladjust::OgreEngine module{"TimedEffect"};
    static const GpuEngine engine{{&module, nullptr}, nullptr};
    const char* const programs[] = {shaders::adjustProgram, shaders::rangeProgram,
                                    shaders::lensProgram};
    keladjust::EngineReason reason;
    static const bool started =
        module.start({KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG,
                      programs, std::size(programs)},
                     reason);
    return started ? &engine : nullptr;
}

_AdjustParam exposureAlone() {
    return only("exposure", &_AdjustParam::exposure, 10).settings;
}
_AdjustParam bothPrograms() {
    return everyGpuStage().settings;
}

void gpuPath(benchmark::State& state, _AdjustParam (*settings)()) {
    const GpuEngine* engine = timedEngine();
    if (engine == nullptr) {
        state.SkipWithError("the engine does not come up: Ogre.log has the reason");
        return;
    }
    CxImage image;
    createPhotographLike(image, state.range(0), state.range(1));
    const _AdjustParam p = settings();
    keladjust::runGpuPipeline(&image, p, *engine, nullptr);  // compiles programs, makes textures
    TimedEffect::times = Times{};
    for (auto _ : state) keladjust::runGpuPipeline(&image, p, *engine, nullptr);

    const Times& t = TimedEffect::times;
    const auto perAdjustment = [](double milliseconds) {
        return benchmark::Counter(milliseconds, benchmark::Counter::kAvgIterations);
    };
    state.counters["upload_ms"] = perAdjustment(t.pass - t.render - t.readBack);
    state.counters["render_ms"] = perAdjustment(t.render);
    state.counters["readback_ms"] = perAdjustment(t.readBack);
}

void cpuPath(benchmark::State& state, _AdjustParam (*settings)()) {
    CxImage image;
    createPhotographLike(image, state.range(0), state.range(1));
    const _AdjustParam p = settings();
    for (auto _ : state) keladjust::runCpuPipeline(&image, p);
}

// 2, 12 and 50 megapixels.
void sizes(benchmark::internal::Benchmark* row) {
    keladjust::bench::pictureSizes(row);
    row->Args({8660, 5773});
}

BENCHMARK_CAPTURE(gpuPath, exposure, exposureAlone)->Apply(sizes);
BENCHMARK_CAPTURE(cpuPath, exposure, exposureAlone)->Apply(sizes);
BENCHMARK_CAPTURE(gpuPath, bothPrograms, bothPrograms)->Apply(sizes);
BENCHMARK_CAPTURE(cpuPath, bothPrograms, bothPrograms)->Apply(sizes);

}  // namespace
