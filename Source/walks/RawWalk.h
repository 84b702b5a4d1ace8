#ifndef KELADJUST_WALKS_RAWWALK_H
#define KELADJUST_WALKS_RAWWALK_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "ImageFormat/PackedSpan.h"
#include "ImageFormat/PixelSpan.h"
#include "platform/Parallel.h"
#include "walks/Picture.h"
#include "walks/ThreadShare.h"

namespace keladjust {

/// The buffer of an image as one run of width x height pixels from its first byte, ignoring the
/// padding of rows: on padded rows the run drifts over the padding and ends before the buffer does.
struct RawWalk {
    std::uint8_t* first = nullptr;
    std::size_t count = 0;     ///< pixels
    std::size_t step = 0;      ///< bytes from one pixel to the next, bits per pixel / 8
    std::size_t channels = 0;  ///< bytes of a pixel that stages may change: at most three
};

RawWalk rawWalkOf(const Picture& picture);

/// True if the run meets exactly the pixels that the layout of the picture addresses, each channel
/// byte included, so that a walk can be taken span by span.
bool rawWalkMeetsPixels(const Picture& picture);

/// Takes `span.count` pixels, from the pixel `first` on, into a span: their first channel as blue,
/// the second, where they have one, as green, the third as red.
void loadRun(const RawWalk& walk, std::size_t first, PixelSpan& span);
/// Writes the channels back; what a pixel has beside them stays.
void storeRun(const RawWalk& walk, std::size_t first, const PixelSpan& span);

/// The same of a walk with three channels or more and a span of pixels in four bytes each.
void loadRun(const RawWalk& walk, std::size_t first, PackedSpan& span);
void storeRun(const RawWalk& walk, std::size_t first, const PackedSpan& span);

/// Calls `body(begin, end)` for shares of the pixels, each on a thread of its own.
template <class Body>
void forEachShare(const RawWalk& walk, Body body) {
    platform::parallelBands(
        walk.count, platform::bandCount(walk.count, pixelsPerThread),
        [&](std::size_t, std::size_t begin, std::size_t end) { body(begin, end); });
}

/// Calls `body(span)` for run after run of the pixels of a walk with three channels or more, spread
/// over threads, to change the pixels of `span`, which are the picture's own where they have four
/// bytes.
template <class Body>
void changePackedRuns(const RawWalk& walk, Body body) {
    forEachShare(walk, [&](std::size_t begin, std::size_t end) {
        PackedPixels packed;
        PackedSpan span;
        for (std::size_t first = begin; first < end; first += span.count) {
            span.count = std::min(PackedSpan::capacity, end - first);
            if (walk.step == 4 && span.count >= PackedSpan::block) {
                span.count -= span.count % PackedSpan::block;
                span.pixels = walk.first + first * walk.step;
                body(span);
                continue;
            }
            span.pixels = packed.bytes;
            loadRun(walk, first, span);
            body(span);
            storeRun(walk, first, span);
        }
    });
}

/// Calls `body(first, span)` for run after run of the pixels, spread over threads, to change the
/// lanes of `span`; `first` is the number of its first pixel.
template <class Body>
void changeRuns(const RawWalk& walk, Body body) {
    forEachShare(walk, [&](std::size_t begin, std::size_t end) {
        PixelSpan span;
        for (std::size_t first = begin; first < end; first += span.count) {
            span.count = std::min(PixelSpan::capacity, end - first);
            loadRun(walk, first, span);
            body(first, span);
            storeRun(walk, first, span);
        }
    });
}

/// Calls `body(step)` with the step as a compile-time constant where it is one of the usual four.
template <class Body>
void withStep(std::size_t step, Body body) {
    switch (step) {
        case 1:
            return body(std::integral_constant<std::size_t, 1>{});
        case 2:
            return body(std::integral_constant<std::size_t, 2>{});
        case 3:
            return body(std::integral_constant<std::size_t, 3>{});
        case 4:
            return body(std::integral_constant<std::size_t, 4>{});
        default:
            return body(step);
    }
}

}  // namespace keladjust

#endif
