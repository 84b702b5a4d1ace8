// White balance: the average of the brightest pixels becomes white.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "ImageFormat/PixelSpan.h"
#include "filters/white-balance/BrightPixels.h"
#include "platform/Parallel.h"
#include "walks/ByteScale.h"
#include "walks/PixelKernel.h"
#include "walks/ScaleByFours.h"
#include "walks/StageForms.h"
#include "walks/ThreadShare.h"

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

// Which pixels to count: those of every so many rows whose channels sum up to at least `leastSum`.
struct Selection {
    unsigned leastSum;
    std::size_t rowStep;
};

void countSpan(const PixelSpan& span, unsigned leastSum, Histogram& histogram) {
    std::array<std::uint16_t, PixelSpan::capacity> places;
    const std::size_t count = placesOfBright(span, leastSum, places.data());
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t red = span.red[places[i]];
        const std::uint8_t green = span.green[places[i]];
        const std::uint8_t blue = span.blue[places[i]];
        histogram[unsigned{red} + green + blue] += {1, red, green, blue};
    }
}

Histogram histogramOf(const Picture& picture, Selection selection) {
    const std::size_t pixelBytes = bytesPerPixelOf(picture.layout);
    const std::size_t rows = (picture.height + selection.rowStep - 1) / selection.rowStep;
    const std::size_t bands = platform::bandCount(rows, pixelsPerThread / picture.width + 1);
    std::vector<Histogram> shares(bands);
    platform::parallelBands(rows, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
        PixelSpan span;
        for (std::size_t i = begin; i < end; ++i) {
            const std::uint8_t* const row = picture.row(i * selection.rowStep);
            for (std::size_t x = 0; x < picture.width; x += span.count) {
                span.count = std::min(PixelSpan::capacity, picture.width - x);
                loadSpan(picture.layout, row + x * pixelBytes, span);
                countSpan(span, selection.leastSum, shares[band]);
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

/// The brightest bins up to the one with which their share exceeds what counts as white; that one
/// is left out, so that the bright pixels are never more than asked for.
struct BrightestPixels {
    BrightestPixels(const Histogram& histogram, float wanted) {
        float counted = 0.0f;
        for (sumOfLast = histogram.size(); sumOfLast-- > 0;) {
            counted += static_cast<float>(histogram[sumOfLast].pixels);
            // Everything but black pixels where the share is never exceeded.
            if (counted > wanted || sumOfLast == 0) break;
            all += histogram[sumOfLast];
        }
    }

    Bin all;
    std::size_t sumOfLast;  ///< of the bin that is left out
};

// Most pixels are too dark to matter. Which ones, a sample of rows tells well enough: some more
// than are asked for, so that the count of the others' rest seldom has to be done as well.
Bin whiteOf(const Picture& picture, float amount) {
    constexpr std::size_t sampleStep = 32;
    constexpr float surplus = 1.25f;
    const auto total = static_cast<float>(picture.pixels());
    const float wanted = total * (amount / 500.0f);
    if (picture.height >= 8 * sampleStep) {
        const Histogram sample = histogramOf(picture, {0, sampleStep});
        const BrightestPixels likely(sample, wanted * surplus / static_cast<float>(sampleStep));
        const auto leastSum = static_cast<unsigned>(likely.sumOfLast);
        const BrightestPixels bright(histogramOf(picture, {leastSum, 1}), wanted);
        if (bright.sumOfLast >= leastSum) return bright.all;
    }
    return BrightestPixels(histogramOf(picture, {0, 1}), wanted).all;
}

/// Multiplies bytes by 255 / average and clamps. The factor is rounded up, to a 65536th, which adds
/// less to a product than the average's share that it may lack of the next whole number.
ByteScale scaleToWhite(std::uint64_t total, std::uint64_t pixels) {
    const std::uint64_t average = total == 0 ? 0 : total / pixels;
    if (average == 0) return {};  // a channel without an average stays as it is
    const std::uint64_t factor = (255 * 65536 + average - 1) / average;
    return {static_cast<std::uint16_t>(factor >> 16), static_cast<std::uint16_t>(factor)};
}

/// Scales every channel so that its average becomes 255.
class BalanceKernel final : public PixelKernel {
public:
    explicit BalanceKernel(const Bin& white)
        : red_(scaleToWhite(white.red, white.pixels)),
          green_(scaleToWhite(white.green, white.pixels)),
          blue_(scaleToWhite(white.blue, white.pixels)) {}

    bool active() const override { return true; }

    void run(PackedSpan& span) const override {
        scaleByFours(span.pixels, 4 * span.count, {blue_, green_, red_, ByteScale{}});
    }

private:
    ByteScale red_;
    ByteScale green_;
    ByteScale blue_;
};

void balance(const Picture& picture, float amount) {
    if (picture.layout == PixelLayout::none) return;
    const BalanceKernel kernel(whiteOf(picture, amount));
    const PixelKernel* const kernels[] = {&kernel};
    runKernels(picture, kernels);
}

}  // namespace

}  // namespace keladjust

CxImage* whiteBalanceAdjustment(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        if (amount != 0.0f) keladjust::balance(picture, amount);
    });
}
