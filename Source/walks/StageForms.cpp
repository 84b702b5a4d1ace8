#include "walks/StageForms.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <optional>

#include "ImageFormat/Geometry.h"
#include "filters/spans/Spans.h"
#include "platform/CallScope.h"
#include "platform/Parallel.h"
#include "walks/ColourMemory.h"
#include "walks/RawWalk.h"
#include "walks/ThreadShare.h"

namespace keladjust {

namespace {

// Runs kernels on the rows of a band, one span after another.
class SpanRunner {
public:
    SpanRunner(CxImage& image, PixelLayout layout, std::span<const PixelKernel* const> kernels,
               std::size_t rows)
        : image_(image), placed_(kernels), layout_(layout) {
        const auto looksAtPlace = [](const PixelKernel* kernel) { return kernel->looksAtPlace(); };
        const auto before = static_cast<std::size_t>(
            std::find_if(kernels.begin(), kernels.end(), looksAtPlace) - kernels.begin());
        const std::span<const PixelKernel* const> anywhere = kernels.first(before);
        if (rows * image.width < pixelsPerThread || !ColourMemory::pays(anywhere)) return;
        try {
            memory_.emplace(layout, anywhere);
            placed_ = kernels.subspan(before);
        } catch (const std::bad_alloc&) {
            // Every pixel goes through every kernel then.
        }
    }

    void run(unsigned y) {
        const std::size_t pixelBytes = bytesPerPixelOf(layout_);
        std::uint8_t* const row = image_.pBits + std::size_t{image_.effWidth} * y;
        PackedSpan span;
        span.y = y;
        for (; span.x < image_.width; span.x += static_cast<unsigned>(span.count)) {
            std::uint8_t* const pixels = row + span.x * pixelBytes;
            span.count = std::min<std::size_t>(PackedSpan::capacity, image_.width - span.x);
            if (layout_ == PixelLayout::bgra32 && span.count >= PackedSpan::stride) {
                span.count -= span.count % PackedSpan::stride;
                span.pixels = pixels;
                change(span);
            } else {
                span.pixels = packed_.bytes;
                loadSpan(layout_, pixels, span);
                change(span);
                storeSpan(layout_, span, pixels);
            }
        }
    }

private:
    void change(PackedSpan& span) {
        if (memory_) {
            memory_->run(span);
            if (!placed_.empty()) roundTrip(layout_, span);
        }
        runInTurn(layout_, placed_, span);
    }

    PackedPixels packed_;
    std::optional<ColourMemory> memory_;  ///< of the kernels before the first of placed_
    CxImage& image_;
    std::span<const PixelKernel* const> placed_;
    PixelLayout layout_;
};

// How many threads share the rows.
std::size_t rowBands(const CxImage& image) {
    return platform::bandCount(image.height, pixelsPerThread / image.width + 1);
}

constexpr spans::Bytes bytesOf(std::size_t pixelBytes) {
    return pixelBytes == 4 ? spans::Bytes::threeOfFour : spans::Bytes::all;
}

// The table that does all the work, where it can do it on the bytes in their places: they are the
// channels, and what a lane loses in its picture is one of three alike.
const ByteTable* onlyTable(PixelLayout layout, std::span<const PixelKernel* const> kernels) {
    const bool bytesAreChannels = storesLanesWhole(layout) || layout == PixelLayout::gray8;
    return bytesAreChannels && kernels.size() == 1 ? kernels.front()->table() : nullptr;
}

// A table on its way over a picture, as a ramp where it is one.
class ByteMap {
public:
    explicit ByteMap(const ByteTable& table) : table_(table), ramp_(byteRampOf(table)) {}

    void operator()(std::uint8_t* bytes, std::size_t pixelBytes, std::size_t count) const {
        if (ramp_) {
            spans::rampBytes(*ramp_, bytesOf(pixelBytes), bytes, count);
        } else {
            spans::mapBytes(table_.data(), bytesOf(pixelBytes), bytes, count);
        }
    }

private:
    const ByteTable& table_;
    std::optional<ByteRamp> ramp_;
};

void mapRows(CxImage& image, PixelLayout layout, const ByteTable& table) {
    const ByteMap map(table);
    const std::size_t pixelBytes = bytesPerPixelOf(layout);
    platform::parallelBands(
        image.height, rowBands(image), [&](std::size_t, std::size_t begin, std::size_t end) {
            for (std::size_t y = begin; y < end; ++y) {
                if (platform::checkpoint(y - begin, end - begin)) return;
                map(image.pBits + y * image.effWidth, pixelBytes, image.width * pixelBytes);
            }
        });
}

}  // namespace

void TableKernel::run(PackedSpan& span) const {
    spans::mapBytes(table_.data(), spans::Bytes::threeOfFour, span.pixels, 4 * span.count);
}

void runKernels(CxImage& image, std::span<const PixelKernel* const> kernels) {
    const PixelLayout layout = layoutOf(image);
    if (!hasPixels(&image) || layout == PixelLayout::none || kernels.empty()) return;
    if (const ByteTable* const table = onlyTable(layout, kernels)) {
        mapRows(image, layout, *table);
        return;
    }
    platform::parallelBands(image.height, rowBands(image),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                SpanRunner runner(image, layout, kernels, end - begin);
                                for (std::size_t y = begin; y < end; ++y) {
                                    if (platform::checkpoint(y - begin, end - begin)) return;
                                    runner.run(static_cast<unsigned>(y));
                                }
                            });
}

void runColourKernel(float* lut, std::size_t count, std::ptrdiff_t stride,
                     const ColourKernel& kernel) {
    const std::size_t together = std::abs(stride) < 3 ? 1 : ColourRun::capacity;
    ColourRun run;
    for (std::size_t first = 0; first < count; first += run.count) {
        float* const entries = lut + static_cast<std::ptrdiff_t>(first) * stride;
        run.count = std::min(together, count - first);
        float* entry = entries;
        for (std::size_t i = 0; i < run.count; ++i, entry += stride) {
            run.red[i] = entry[0];
            run.green[i] = entry[1];
            run.blue[i] = entry[2];
        }
        kernel.change(run);
        entry = entries;
        for (std::size_t i = 0; i < run.count; ++i, entry += stride) {
            entry[0] = run.red[i];
            entry[1] = run.green[i];
            entry[2] = run.blue[i];
        }
    }
}

void mapRawWalk(CxImage& image, const ByteTable& table) {
    const RawWalk walk = rawWalkOf(image);
    const ByteMap map(table);
    platform::parallelBands(walk.count, platform::bandCount(walk.count, pixelsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                if (walk.step <= 4) {
                                    map(walk.first + begin * walk.step, walk.step,
                                        (end - begin) * walk.step);
                                    return;
                                }
                                for (std::size_t i = begin; i < end; ++i) {
                                    std::uint8_t* const pixel = walk.first + i * walk.step;
                                    for (std::size_t c = 0; c < walk.channels; ++c)
                                        pixel[c] = table[pixel[c]];
                                }
                            });
}

}  // namespace keladjust
