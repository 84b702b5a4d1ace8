#include "walks/StageForms.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <optional>

#include "platform/CallScope.h"
#include "platform/Parallel.h"
#include "platform/Turns.h"
#include "walks/ByteMap.h"
#include "walks/ColourMemory.h"
#include "walks/RawWalk.h"
#include "walks/ThreadShare.h"

namespace keladjust {

namespace {

using Kernels = std::span<const PixelKernel* const>;

// Kernels by way of a memory of their own.
struct RememberedKernels {
    RememberedKernels(Kernels these, std::size_t pixels) : kernels(these), memory(pixels) {}

    Kernels kernels;
    ColourMemory memory;
};

// Where the dear kernels at the end begin that pay for a second memory: the cheap ones before make
// fewer colours of many.
std::size_t beginOfDear(Kernels kernels) {
    constexpr unsigned dear = 3;  // nanoseconds
    std::size_t begin = kernels.size();
    while (begin > 0 && kernels[begin - 1]->effort() >= dear) --begin;
    const bool paysTwice =
        ColourMemory::pays(kernels.first(begin)) && ColourMemory::pays(kernels.subspan(begin));
    return paysTwice ? begin : kernels.size();
}

// The kernels of a call: those before the first that looks at a pixel's place may go by way of one
// memory or two.
struct CallKernels {
    CallKernels(const Picture& picture, Kernels kernels) : placed(kernels) {
        const auto looksAtPlace = [](const PixelKernel* kernel) { return kernel->looksAtPlace(); };
        const auto before = static_cast<std::size_t>(
            std::find_if(kernels.begin(), kernels.end(), looksAtPlace) - kernels.begin());
        const std::size_t pixels = picture.pixels();
        const Kernels remembered = kernels.first(before);
        if (pixels < pixelsPerThread || !ColourMemory::pays(remembered)) return;
        const std::size_t dear = beginOfDear(remembered);
        try {
            if (dear < before) last.emplace(remembered.subspan(dear), pixels / 2);
            first.emplace(remembered.first(dear), pixels);
            placed = kernels.subspan(before);
        } catch (const std::bad_alloc&) {
            // Every pixel goes through every kernel then.
        }
    }

    std::optional<RememberedKernels> first;
    std::optional<RememberedKernels> last;
    Kernels placed;
};

// Runs kernels on the rows of a band, one span after another.
class SpanRunner {
public:
    SpanRunner(const Picture& picture, CallKernels& kernels)
        : picture_(picture), layout_(picture.layout), placed_(kernels.placed) {
        if (!kernels.first) return;
        if (kernels.last) last_.emplace(layout_, kernels.last->kernels, kernels.last->memory);
        remembering_.emplace(layout_, kernels.first->kernels, kernels.first->memory,
                             last_ ? &*last_ : nullptr);
    }

    void run(std::size_t y) {
        const std::size_t pixelBytes = bytesPerPixelOf(layout_);
        std::uint8_t* const row = picture_.row(y);
        PackedSpan span;
        span.y = static_cast<unsigned>(y);
        for (; span.x < picture_.width; span.x += static_cast<unsigned>(span.count)) {
            std::uint8_t* const pixels = row + span.x * pixelBytes;
            span.count = std::min<std::size_t>(PackedSpan::capacity, picture_.width - span.x);
            if (layout_ == PixelLayout::bgra32 && span.count >= PackedSpan::block) {
                span.count -= span.count % PackedSpan::block;
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
        if (remembering_) {
            remembering_->run(span);
            if (!placed_.empty()) roundTrip(layout_, span);
        }
        runInTurn(layout_, placed_, span);
    }

    PackedPixels packed_;
    std::optional<RememberingKernels> last_;
    std::optional<RememberingKernels> remembering_;
    const Picture& picture_;
    PixelLayout layout_;
    Kernels placed_;
};

// How many threads share the rows.
std::size_t rowBands(const Picture& picture) {
    return platform::bandCount(picture.height, pixelsPerThread / picture.width + 1);
}

constexpr MappedBytes mappedBytesOf(std::size_t pixelBytes) {
    return pixelBytes == 4 ? MappedBytes::threeOfFour : MappedBytes::all;
}

// The table that does all the work, where it can do it on the bytes in their places: they are the
// channels, and what a lane loses in its picture is one of three alike.
const ByteTable* onlyTable(PixelLayout layout, Kernels kernels) {
    const bool bytesAreChannels = storesLanesWhole(layout) || layout == PixelLayout::gray8;
    return bytesAreChannels && kernels.size() == 1 ? kernels.front()->table() : nullptr;
}

// A table on its way over a picture, as a ramp where it is one.
class ByteMap {
public:
    explicit ByteMap(const ByteTable& table) : table_(table), ramp_(byteRampOf(table)) {}

    void operator()(std::uint8_t* bytes, std::size_t pixelBytes, std::size_t count) const {
        if (ramp_) {
            rampBytes(*ramp_, mappedBytesOf(pixelBytes), bytes, count);
        } else {
            mapBytes(table_, mappedBytesOf(pixelBytes), bytes, count);
        }
    }

private:
    const ByteTable& table_;
    std::optional<ByteRamp> ramp_;
};

void mapRows(const Picture& picture, const ByteTable& table) {
    const ByteMap map(table);
    const std::size_t pixelBytes = bytesPerPixelOf(picture.layout);
    platform::parallelBands(picture.height, rowBands(picture),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                for (std::size_t y = begin; y < end; ++y) {
                                    if (platform::checkpoint(y - begin, end - begin)) return;
                                    map(picture.row(y), pixelBytes, picture.width * pixelBytes);
                                }
                            });
}

}  // namespace

void TableKernel::run(PackedSpan& span) const {
    mapBytes(table_, MappedBytes::threeOfFour, span.pixels, 4 * span.count);
}

void runKernels(const Picture& picture, std::span<const PixelKernel* const> kernels) {
    if (picture.layout == PixelLayout::none || kernels.empty()) return;
    if (const ByteTable* const table = onlyTable(picture.layout, kernels)) {
        mapRows(picture, *table);
        return;
    }
    CallKernels callKernels(picture, kernels);
    // Colours that come again make some rows several times as fast as others.
    constexpr std::size_t pixelsOfTurn = 1 << 13;
    const std::size_t bands = rowBands(picture);
    platform::Turns rows(picture.height, bands, pixelsOfTurn / picture.width + 1);
    platform::parallelBands(bands, bands, [&](std::size_t band, std::size_t, std::size_t) {
        SpanRunner runner(picture, callKernels);
        rows.take(band, [&](std::size_t y) { runner.run(y); });
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

void mapRawWalk(const Picture& picture, const ByteTable& table) {
    const RawWalk walk = rawWalkOf(picture);
    const ByteMap map(table);
    forEachShare(walk, [&](std::size_t begin, std::size_t end) {
        if (walk.step <= 4) {
            map(walk.first + begin * walk.step, walk.step, (end - begin) * walk.step);
            return;
        }
        for (std::size_t i = begin; i < end; ++i) {
            std::uint8_t* const pixel = walk.first + i * walk.step;
            for (std::size_t c = 0; c < walk.channels; ++c) pixel[c] = table[pixel[c]];
        }
    });
}

}  // namespace keladjust
