// The colour table: baking it, and baking and writing it as a cube file; also the same bake written
// number by number with fprintf().

#include <benchmark/benchmark.h>
#include <keladjust/keladjust.h>

#include <cstdio>
#include <memory>

#include "support/BenchSettings.h"
#include "support/TableRows.h"

namespace {

using keladjust::bench::addTableRow;
using keladjust::bench::elevenSettings;
using keladjust::bench::everyTableSetting;

template <auto settings>
void bake(const char*) {
    benchmark::DoNotOptimize(getLut3dData(settings()));
}

template <auto settings>
void bakeAndWrite(const char* path) {
    writeLut3DFile(settings(), path);
}

void bakeAndPrint(const char* path) {
    const float* const table = getLut3dData(everyTableSetting());
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

const bool added =
    addTableRow("colour table, eleven settings", "library", bake<elevenSettings>) &&
    addTableRow("colour table, every setting", "library", bake<everyTableSetting>) &&
    addTableRow("cube file, eleven settings", "library", bakeAndWrite<elevenSettings>) &&
    addTableRow("cube file, every setting", "library", bakeAndWrite<everyTableSetting>) &&
    addTableRow("cube file, every setting", "naive", bakeAndPrint);

}  // namespace
