#include "walks/RawWalk.h"

#include <algorithm>

#include "ImageFormat/Interleave.h"

namespace keladjust {

RawWalk rawWalkOf(const Picture& picture) {
    const std::size_t step = picture.bitsPerPixel >> 3;
    return {picture.first, picture.pixels(), step, std::min<std::size_t>(3, step)};
}

bool rawWalkMeetsPixels(const Picture& picture) {
    const bool bytesAreChannels =
        picture.layout == PixelLayout::gray8 || storesLanesWhole(picture.layout);
    return bytesAreChannels && picture.stride == picture.width * picture.bytesPerPixel;
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

void loadRun(const RawWalk& walk, std::size_t first, PackedSpan& span) {
    const std::uint8_t* const pixels = walk.first + first * walk.step;
    if (walk.step <= 4) {
        packPixels(pixels, walk.step, false, span.count, span.pixels);
        return;
    }
    PixelSpan lanes;
    deinterleave(pixels, walk.step, span.count, lanes.blue, lanes.green, lanes.red);
    interleave(lanes.blue, lanes.green, lanes.red, 4, span.count, span.pixels);
}

void storeRun(const RawWalk& walk, std::size_t first, const PackedSpan& span) {
    std::uint8_t* const pixels = walk.first + first * walk.step;
    if (walk.step <= 4) {
        unpackPixels(span.pixels, walk.step, false, span.count, pixels);
        return;
    }
    PixelSpan lanes;
    deinterleave(span.pixels, 4, span.count, lanes.blue, lanes.green, lanes.red);
    interleave(lanes.blue, lanes.green, lanes.red, walk.step, span.count, pixels);
}

}  // namespace keladjust
