#include "engine/PictureRows.h"

#include <algorithm>
#include <cstddef>

#include "ImageFormat/Geometry.h"

namespace keladjust {

Ogre::PixelBox uploadBox(const _ImageParam& picture, std::vector<unsigned char>& tightRows) {
    const std::size_t pixelBytes = Ogre::PixelUtil::getNumElemBytes(picture.format);
    const std::size_t rowBytes = picture.rowBytes();
    const std::size_t tightRowBytes = picture.width * pixelBytes;
    Ogre::PixelBox box(picture.width, picture.height, 1, picture.format, picture.data);
    if (rowBytes == tightRowBytes) return box;
    if (rowBytes % pixelBytes == 0) {
        box.rowPitch = rowBytes / pixelBytes;
        box.slicePitch = box.rowPitch * picture.height;
        return box;
    }
    // The engine counts the distance of rows in pixels.
    tightRows.resize(tightRowBytes * picture.height);
    for (std::size_t y = 0; y < picture.height; ++y) {
        std::copy_n(picture.data + rowBytes * y, tightRowBytes,
                    tightRows.data() + tightRowBytes * y);
    }
    box.data = tightRows.data();
    return box;
}

bool isRenderable(Ogre::PixelFormat format, std::uint32_t bytesPerPixel) {
    switch (format) {
        case Ogre::PF_A8R8G8B8:
        case Ogre::PF_A8B8G8R8:
            return bytesPerPixel == 4;
        case Ogre::PF_R8G8B8:
        case Ogre::PF_B8G8R8:
            return bytesPerPixel == 3;
        case Ogre::PF_L8:
            return bytesPerPixel == 1;
        default:
            return false;
    }
}

void storeRender(const unsigned char* render, std::uint32_t width, std::uint32_t height,
                 Ogre::PixelFormat format, unsigned char* pixels) {
    const std::size_t pixelBytes = Ogre::PixelUtil::getNumElemBytes(format);
    const std::size_t rowBytes = paddedRowBytes(width * pixelBytes);
    for (std::size_t y = 0; y < height; ++y) {
        const unsigned char* from = render + std::size_t{width} * 4 * y;
        unsigned char* to = pixels + rowBytes * y;
        for (std::uint32_t x = 0; x < width; ++x, from += 4, to += pixelBytes) {
            const unsigned char blue = from[0];
            const unsigned char green = from[1];
            const unsigned char red = from[2];
            if (format == Ogre::PF_L8) {
                to[0] = red;
            } else {
                // The engine's names give the bytes from the highest of a word to the lowest.
                to[0] = format == Ogre::PF_R8G8B8 ? blue : red;
                to[1] = green;
                to[2] = format == Ogre::PF_R8G8B8 ? red : blue;
            }
        }
    }
}

}  // namespace keladjust
