#ifndef KELADJUST_TESTS_MODELS_BLUR_STACKBLUR_H
#define KELADJUST_TESTS_MODELS_BLUR_STACKBLUR_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Stack Blur as the convolution that it is: weights 1, 2, ..., radius + 1, ..., 2, 1, edges
/// repeated, the division done by a multiplication and a shift.
namespace keladjust::test {

struct BlurScaleModel {
    std::uint64_t multiplier;
    int shift;
};

inline BlurScaleModel blurScaleModel(int radius) {
    const auto edge = static_cast<std::uint64_t>(radius + 1);
    const std::uint64_t weights = edge * edge;
    for (int shift = 40;; --shift) {
        const std::uint64_t power = std::uint64_t{1} << shift;
        const std::uint64_t multiplier = power / weights + (power % weights != 0 ? 1 : 0);
        if (multiplier <= 512) return {multiplier, shift};
    }
}

/// Blurs `length` samples that stand `step` bytes apart; `alpha` places from a sample to its limit,
/// or 0 for a limit of 255.
inline void blurLineModel(std::uint8_t* line, int length, std::ptrdiff_t step, int radius,
                          std::ptrdiff_t alpha) {
    const BlurScaleModel scale = blurScaleModel(radius);
    std::vector<std::uint8_t> samples(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) samples[static_cast<std::size_t>(i)] = line[i * step];
    // The edges' repetitions have the weights 1, 2, ... up to how many there are: radii are large
    // beside many lines, and most of a window is repetition there.
    const auto repeated = [radius](int distance) {
        const auto count = static_cast<std::uint64_t>(std::max(radius - distance, 0));
        return count * (count + 1) / 2;
    };
    for (int i = 0; i < length; ++i) {
        std::uint64_t sum =
            repeated(i) * samples.front() + repeated(length - 1 - i) * samples.back();
        for (int at = std::max(i - radius, 0); at <= std::min(i + radius, length - 1); ++at) {
            const int weight = radius + 1 - std::abs(at - i);
            sum += static_cast<std::uint64_t>(weight) * samples[static_cast<std::size_t>(at)];
        }
        const std::uint64_t limit = alpha != 0 ? line[i * step + alpha] : 255;
        line[i * step] =
            static_cast<std::uint8_t>(std::min(sum * scale.multiplier >> scale.shift, limit));
    }
}

/// One pass: 1 along rows, 2 along columns.
inline void blurPassModel(std::uint8_t* bits, int width, int height, int bytesPerPixel, int radius,
                          int pass) {
    const std::ptrdiff_t rowBytes = (std::ptrdiff_t{width} * bytesPerPixel + 3) / 4 * 4;
    for (int c = 0; c < std::min(3, bytesPerPixel); ++c) {
        const std::ptrdiff_t alpha = bytesPerPixel == 4 ? 3 - c : 0;
        for (int y = 0; pass == 1 && y < height; ++y) {
            blurLineModel(bits + y * rowBytes + c, width, bytesPerPixel, radius, alpha);
        }
        for (int x = 0; pass == 2 && x < width; ++x) {
            blurLineModel(bits + x * bytesPerPixel + c, height, rowBytes, radius, alpha);
        }
    }
}

inline void blurModel(std::uint8_t* bits, int width, int height, int bytesPerPixel, int radius) {
    blurPassModel(bits, width, height, bytesPerPixel, radius, 1);
    blurPassModel(bits, width, height, bytesPerPixel, radius, 2);
}

/// Both passes on pictures of 8, 24 and 32 bits; others stay as they are.
inline void blurImageModel(CxImage& image, int radius) {
    const int bytes = static_cast<int>(image.bpp / 8);
    if (bytes != 1 && bytes != 3 && bytes != 4) return;
    blurModel(image.pBits, static_cast<int>(image.width), static_cast<int>(image.height), bytes,
              radius);
}

}  // namespace keladjust::test

#endif
