#ifndef KELADJUST_BENCH_SUPPORT_BENCHPICTURE_H
#define KELADJUST_BENCH_SUPPORT_BENCHPICTURE_H

#include <benchmark/benchmark.h>
#include <keladjust/CxImage.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

namespace keladjust::bench {

/// Makes `image` a BGRA picture that looks like a photograph to the stages: smooth gradients with
/// noise on them.
inline void createPhotographLike(CxImage& image, std::int64_t columns, std::int64_t rows) {
    const auto width = static_cast<unsigned>(columns);
    const auto height = static_cast<unsigned>(rows);
    image.Create(width, height, 32, IMAGE_FORMAT_BGRA);
    std::mt19937 generator(1);
    for (unsigned y = 0; y < height; ++y) {
        std::uint8_t* p = image.GetBits() + std::size_t{image.GetEffWidth()} * y;
        for (unsigned x = 0; x < width; ++x, p += 4) {
            const double wave = std::sin(x * 0.011) + std::cos(y * 0.007 + x * 0.002);
            const auto noise = static_cast<double>(generator() >> 28);
            p[0] = static_cast<std::uint8_t>(80 + 30 * wave + noise);
            p[1] = static_cast<std::uint8_t>(110 + 40 * wave + noise);
            p[2] = static_cast<std::uint8_t>(140 - 45 * wave + noise);
            p[3] = 255;
        }
    }
}

/// The same, made once for the size asked for last, which is what most rows begin with.
inline CxImage& photographLike(std::int64_t columns, std::int64_t rows) {
    static CxImage image;
    if (image.GetWidth() != columns || image.GetHeight() != rows) {
        createPhotographLike(image, columns, rows);
    }
    return image;
}

/// The sizes of every row: a preview and 12 megapixels.
inline void pictureSizes(benchmark::internal::Benchmark* row) {
    row->Args({1920, 1080})->Args({4000, 3000})->Unit(benchmark::kMillisecond)->UseRealTime();
}

}  // namespace keladjust::bench

#endif
