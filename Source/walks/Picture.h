#ifndef KELADJUST_WALKS_PICTURE_H
#define KELADJUST_WALKS_PICTURE_H

#include <keladjust/CxImage.h>

#include <cstddef>
#include <cstdint>
#include <optional>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/PixelSpan.h"

namespace keladjust {

/// A picture with pixels, all of them inside its buffer. It is made once, where a host's image
/// comes in; what works on pictures need not ask again.
struct Picture {
    std::uint8_t* first;        ///< byte of the first row
    std::size_t stride;         ///< bytes from one row to the next, padding included
    std::size_t width;          ///< pixels
    std::size_t height;         ///< rows
    PixelLayout layout;         ///< none: no pixel is read or written by row and column
    std::size_t bytesPerPixel;  ///< 0 for a depth without a meaning
    std::size_t bitsPerPixel;

    std::uint8_t* row(std::size_t y) const { return first + y * stride; }
    std::size_t size() const { return stride * height; }
    std::size_t pixels() const { return width * height; }
};

/// Nothing for null, and for an image without pixels. An adopted buffer whose size wraps at 32 bits
/// counts as none.
inline std::optional<Picture> pictureOf(CxImage* image) {
    if (!hasPixels(image)) return {};
    return Picture{image->pBits,     image->effWidth,      image->width, image->height,
                   layoutOf(*image), image->bytesPerPixel, image->bpp};
}

}  // namespace keladjust

#endif
