#include "filters/StageForms.h"

#include <algorithm>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/RawWalk.h"
#include "filters/spans/Spans.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

// Below this many pixels a thread costs more than it saves.
constexpr std::size_t pixelsPerThread = 1 << 15;

void runOnRow(CxImage& image, PixelLayout layout, unsigned y,
              std::span<const PixelKernel* const> kernels, PixelSpan& span) {
    const std::size_t pixelBytes = bytesPerPixelOf(layout);
    std::uint8_t* const row = image.pBits + std::size_t{image.effWidth} * y;
    span.y = y;
    for (unsigned x = 0; x < image.width; x += static_cast<unsigned>(span.count)) {
        span.x = x;
        span.count = std::min<std::size_t>(PixelSpan::capacity, image.width - x);
        std::uint8_t* const pixels = row + x * pixelBytes;
        loadSpan(layout, pixels, span);
        for (const PixelKernel* kernel : kernels) {
            if (kernel != kernels.front()) roundTrip(layout, span);
            kernel->run(span);
        }
        storeSpan(layout, span, pixels);
    }
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

void mapRows(CxImage& image, PixelLayout layout, const ByteTable& table, std::size_t begin,
             std::size_t end) {
    const std::size_t pixelBytes = bytesPerPixelOf(layout);
    for (std::size_t y = begin; y < end; ++y) {
        spans::mapBytes(table.data(), bytesOf(pixelBytes), image.pBits + y * image.effWidth,
                        image.width * pixelBytes);
    }
}

}  // namespace

void TableKernel::run(PixelSpan& span) const {
    for (std::uint8_t* lane : {span.red, span.green, span.blue}) {
        spans::mapBytes(table_.data(), spans::Bytes::all, lane, span.count);
    }
}

void runKernels(CxImage& image, std::span<const PixelKernel* const> kernels) {
    const PixelLayout layout = layoutOf(image);
    if (!hasPixels(&image) || layout == PixelLayout::none || kernels.empty()) return;
    const ByteTable* const table = onlyTable(layout, kernels);
    const std::size_t rowsPerThread = pixelsPerThread / image.width + 1;
    platform::parallelBands(image.height, platform::bandCount(image.height, rowsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                if (table != nullptr) {
                                    mapRows(image, layout, *table, begin, end);
                                    return;
                                }
                                PixelSpan span;
                                for (std::size_t y = begin; y < end; ++y) {
                                    runOnRow(image, layout, static_cast<unsigned>(y), kernels,
                                             span);
                                }
                            });
}

void mapRawWalk(CxImage& image, const ByteTable& table) {
    const RawWalk walk = rawWalkOf(image);
    platform::parallelBands(walk.count, platform::bandCount(walk.count, pixelsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                if (walk.step <= 4) {
                                    spans::mapBytes(table.data(), bytesOf(walk.step),
                                                    walk.first + begin * walk.step,
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
