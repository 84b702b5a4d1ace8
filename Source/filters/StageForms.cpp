#include "filters/StageForms.h"

#include <algorithm>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/RawWalk.h"
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

}  // namespace

void TableKernel::run(PixelSpan& span) const {
    for (std::uint8_t* lane : {span.red, span.green, span.blue}) {
        for (std::size_t i = 0; i < span.count; ++i) lane[i] = table_[lane[i]];
    }
}

void runKernels(CxImage& image, std::span<const PixelKernel* const> kernels) {
    const PixelLayout layout = layoutOf(image);
    if (!hasPixels(&image) || layout == PixelLayout::none || kernels.empty()) return;
    const std::size_t rowsPerThread = pixelsPerThread / image.width + 1;
    platform::parallelBands(image.height, platform::bandCount(image.height, rowsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
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
                                withStep(walk.step, [&](auto step) {
                                    const std::size_t channels = std::min<std::size_t>(3, step);
                                    for (std::size_t i = begin; i < end; ++i) {
                                        std::uint8_t* const pixel = walk.first + i * step;
                                        for (std::size_t c = 0; c < channels; ++c)
                                            pixel[c] = table[pixel[c]];
                                    }
                                });
                            });
}

}  // namespace keladjust
