#include "walks/RawWalk.h"

#include <algorithm>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/Interleave.h"
#include "ImageFormat/PixelSpan.h"

namespace keladjust {

RawWalk rawWalkOf(CxImage& image) {
    if (!hasPixels(&image)) return {};
    const std::size_t step = image.bpp >> 3;
    return {image.pBits, std::size_t{image.width} * image.height, step,
            std::min<std::size_t>(3, step)};
}

bool rawWalkMeetsPixels(const CxImage& image) {
    const PixelLayout layout = layoutOf(image);
    const bool bytesAreChannels = layout == PixelLayout::gray8 || storesLanesWhole(layout);
    return bytesAreChannels && image.effWidth == image.width * image.bytesPerPixel;
}

void loadRun(const RawWalk& walk, std::size_t first, PixelSpan& span) {
    const std::uint8_t* const pixels = walk.first + first * walk.step;
    if (walk.channels == 3) {
        deinterleave(pixels, walk.step, span.count, span.blue, span.green, span.red);
        return;
    }
    std::uint8_t* const lanes[] = {span.blue, span.green};
    for (std::size_t c = 0; c < walk.channels; ++c) {
        for (std::size_t i = 0; i < span.count; ++i) lanes[c][i] = pixels[i * walk.step + c];
    }
}

void storeRun(const RawWalk& walk, std::size_t first, const PixelSpan& span) {
    std::uint8_t* const pixels = walk.first + first * walk.step;
    if (walk.channels == 3) {
        interleave(span.blue, span.green, span.red, walk.step, span.count, pixels);
        return;
    }
    const std::uint8_t* const lanes[] = {span.blue, span.green};
    for (std::size_t c = 0; c < walk.channels; ++c) {
        for (std::size_t i = 0; i < span.count; ++i) pixels[i * walk.step + c] = lanes[c][i];
    }
}

}  // namespace keladjust
