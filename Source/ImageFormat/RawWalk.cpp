#include "ImageFormat/RawWalk.h"

#include <algorithm>

#include "ImageFormat/Geometry.h"
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

}  // namespace keladjust
