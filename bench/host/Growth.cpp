// How the time that a pixel takes, and memory beyond the picture, grow with the picture, with
// threads and with the format: rows "<what grows>/<stage>/<how much>", one of each kind of stage.

#include <benchmark/benchmark.h>
#include <keladjust/keladjust.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "filters/Stages.h"
#include "support/BenchPicture.h"
#include "support/BenchSettings.h"
#include "support/ProcessMemory.h"
#include "support/StageSettings.h"

namespace {

using keladjust::Stage;

struct Format {
    const char* name;
    unsigned bpp;
    _ImagePixelFormat format;
};

constexpr Format formats[] = {{"grey", 8, IMAGE_FORMAT_GRAY},
                              {"rgb16", 16, IMAGE_FORMAT_RGB},
                              {"rgb24", 24, IMAGE_FORMAT_RGB},
                              {"bgra32", 32, IMAGE_FORMAT_BGRA}};
constexpr const Format& usualFormat = formats[3];

// Pictures of the same colours whatever their size: bytes of a small one, again and again.
void create(CxImage& image, double megapixels, const Format& format) {
    CxImage& small = keladjust::bench::photographLike(1600, 1200);
    const auto rows = static_cast<unsigned>(std::lround(std::sqrt(megapixels * 1e6 * 3 / 4)));
    image.Create(rows * 4 / 3, rows, format.bpp, format.format);
    const std::size_t all = std::size_t{image.GetEffWidth()} * image.GetHeight();
    const std::size_t some = std::size_t{small.GetEffWidth()} * small.GetHeight();
    for (std::size_t i = 0; i < all; i += some) {
        std::memcpy(image.GetBits() + i, small.GetBits(), std::min(some, all - i));
    }
}

struct Extent {
    double megapixels = 12;
    int threads = 0;  ///< 0: one a core
    const Format* format = &usualFormat;
};

void measure(benchmark::State& state, const _AdjustParam& record, const Extent& extent) {
    CxImage image;
    create(image, extent.megapixels, *extent.format);
    setMaxThreads(extent.threads);
    double copies = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const keladjust::bench::MemoryRise rise;
        state.ResumeTiming();
        doAdjust(&image, record);
        state.PauseTiming();
        copies = std::max(copies, rise.peak() / static_cast<double>(image.GetSize()));
        state.ResumeTiming();
    }
    setMaxThreads(0);
    state.counters["copies"] = copies;
    state.counters["ns/pixel"] =
        benchmark::Counter(extent.megapixels / 1e3, benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

// All that a stage has, a quarter of the way from doing nothing.
_AdjustParam moderately(const Stage& stage) {
    _AdjustParam record = keladjust::test::identity;
    std::size_t place = 0;
    for (const keladjust::Setting& setting : stage.settings()) {
        const float way = (setting.highest - setting.identity) / 4;
        keladjust::test::setSlot(record, stage, place++,
                                 setting.shapesOnly ? setting.usual : setting.identity + way);
    }
    return record;
}

void addRow(const std::string& name, const _AdjustParam& record, const Extent& extent) {
    benchmark::RegisterBenchmark(
        name.c_str(), [record, extent](benchmark::State& state) { measure(state, record, extent); })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

void addRows(const std::string& stage, const _AdjustParam& record) {
    for (const int megapixels : {2, 6, 12, 24, 48, 100, 200}) {
        addRow("size/" + stage + "/" + std::to_string(megapixels), record,
               {.megapixels = static_cast<double>(megapixels)});
    }
    for (const int threads : {1, 2, 3, 4, 8, 16}) {
        addRow("threads/" + stage + "/" + std::to_string(threads), record, {.threads = threads});
    }
    for (const Format& format : formats) {
        addRow("format/" + stage + "/" + format.name, record, {.format = &format});
    }
}

const bool added = [] {
    std::string_view lastGroup;
    for (const Stage& stage : keladjust::stages) {
        const std::string_view group = stage.group;
        // Colour ranges differ in their usual bounds alone.
        if (group == "Colour ranges" && group == lastGroup) continue;
        lastGroup = group;
        addRows(stage.name.c_str(), moderately(stage));
    }
    addRows("eleven settings", keladjust::bench::elevenSettings());
    return true;
}();

}  // namespace
