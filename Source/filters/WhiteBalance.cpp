// White balance: the average of the brightest pixels becomes white.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/PixelSpan.h"
#include "filters/PixelKernel.h"
#include "filters/StageForms.h"
#include "filters/spans/Spans.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

// Pixels of one brightness together.
struct Bin {
    std::uint64_t pixels = 0;
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;

    Bin& operator+=(const Bin& other) {
        pixels += other.pixels;
        red += other.red;
        green += other.green;
        blue += other.blue;
        return *this;
    }
};

// Bins by the sum of a pixel's three channels; the last two stay empty.
using Histogram = std::array<Bin, 768>;

void countSpan(const PixelSpan& span, Histogram& histogram) {
    for (std::size_t i = 0; i < span.count; ++i) {
        const unsigned sum = unsigned{span.red[i]} + span.green[i] + span.blue[i];
        histogram[sum] += {1, span.red[i], span.green[i], span.blue[i]};
    }
}

Histogram histogramOf(const CxImage& image, PixelLayout layout) {
    constexpr std::size_t pixelsPerThread = 1 << 15;
    const std::size_t pixelBytes = bytesPerPixelOf(layout);
    const std::size_t bands = platform::bandCount(image.height, pixelsPerThread / image.width + 1);
    std::vector<Histogram> shares(bands);
    platform::parallelBands(
        image.height, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
            PixelSpan span;
            for (std::size_t y = begin; y < end; ++y) {
                const std::uint8_t* const row = image.pBits + y * image.effWidth;
                for (std::size_t x = 0; x < image.width; x += span.count) {
                    span.count = std::min(PixelSpan::capacity, image.width - x);
                    loadSpan(layout, row + x * pixelBytes, span);
                    countSpan(span, shares[band]);
                }
            }
        });
    Histogram histogram = shares.front();
    for (std::size_t band = 1; band < bands; ++band) {
        for (std::size_t sum = 0; sum < histogram.size(); ++sum) {
            histogram[sum] += shares[band][sum];
        }
    }
    return histogram;
}

// The brightest bins up to the one with which their share exceeds what counts as white; that one is
// left out, so that the bright pixels are never more than asked for.
Bin brightestPixels(const Histogram& histogram, float total, float amount) {
    const float wanted = total * (amount / 500.0f);
    Bin bright;
    float counted = 0.0f;
    for (std::size_t sum = histogram.size(); sum-- > 0;) {
        counted += static_cast<float>(histogram[sum].pixels);
        // Everything but black pixels where the share is never exceeded.
        if (counted > wanted || sum == 0) break;
        bright += histogram[sum];
    }
    return bright;
}

/// Scales every channel so that its average becomes 255.
class BalanceKernel final : public PixelKernel {
public:
    explicit BalanceKernel(const Bin& white)
        : red_(tableFor(white.red, white.pixels)),
          green_(tableFor(white.green, white.pixels)),
          blue_(tableFor(white.blue, white.pixels)) {}

    bool active() const override { return true; }

    void run(PackedSpan& span) const override {
        spans::mapChannels(span, {red_.data(), green_.data(), blue_.data()});
    }

private:
    // A channel without an average stays as it is.
    static ByteTable tableFor(std::uint64_t total, std::uint64_t pixels) {
        const unsigned average = total == 0 ? 0 : static_cast<unsigned>(total / pixels);
        ByteTable table;
        for (unsigned value = 0; value < table.size(); ++value) {
            table[value] = static_cast<std::uint8_t>(
                average == 0 ? value : std::min(value * 255 / average, 255u));
        }
        return table;
    }

    ByteTable red_;
    ByteTable green_;
    ByteTable blue_;
};

void balance(CxImage& image, float amount) {
    const PixelLayout layout = layoutOf(image);
    if (!hasPixels(&image) || layout == PixelLayout::none) return;
    const auto total = static_cast<float>(std::uint64_t{image.width} * image.height);
    const BalanceKernel kernel(brightestPixels(histogramOf(image, layout), total, amount));
    const PixelKernel* const kernels[] = {&kernel};
    runKernels(image, kernels);
}

}  // namespace

}  // namespace keladjust

CxImage* whiteBalanceAdjustment(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&] {
        if (image != nullptr && amount != 0.0f) keladjust::balance(*image, amount);
    });
}
