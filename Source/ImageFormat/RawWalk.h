#ifndef KELADJUST_IMAGEFORMAT_RAWWALK_H
#define KELADJUST_IMAGEFORMAT_RAWWALK_H

#include <keladjust/CxImage.h>

#include <cstddef>
#include <cstdint>

namespace keladjust {

/// The buffer of an image as one run of width x height pixels from its first byte, ignoring the
/// padding of rows: on padded rows the run drifts over the padding and ends before the buffer does.
struct RawWalk {
    std::uint8_t* first = nullptr;
    std::size_t count = 0;     ///< pixels; 0 for an image without pixels
    std::size_t step = 0;      ///< bytes from one pixel to the next, bits per pixel / 8
    std::size_t channels = 0;  ///< bytes of a pixel that stages may change: at most three
};

RawWalk rawWalkOf(CxImage& image);

/// True if the run meets exactly the pixels that the layout of the image addresses, each channel
/// byte included, so that a walk can be taken span by span.
bool rawWalkMeetsPixels(const CxImage& image);

}  // namespace keladjust

#endif
