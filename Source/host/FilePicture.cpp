#include "host/FilePicture.h"

#include <OgreImage.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "ImageFormat/Geometry.h"

namespace keladjust {

namespace {

_ImagePixelFormat imageFormatOf(Ogre::PixelFormat format) {
    switch (format) {
        case Ogre::PF_L8:
            return IMAGE_FORMAT_GRAY;
        case Ogre::PF_R8G8B8:
            return IMAGE_FORMAT_BGR;
        case Ogre::PF_B8G8R8:
            return IMAGE_FORMAT_RGB;
        case Ogre::PF_A8R8G8B8:
            return IMAGE_FORMAT_BGRA;
        case Ogre::PF_A8B8G8R8:
            return IMAGE_FORMAT_RGBA;
        default:
            return IMAGE_FORMAT_UNKNOWN;
    }
}

// Null if memory is short or the rows hold less than they should.
unsigned char* paddedCopy(const Ogre::Image& image, unsigned bpp) {
    const std::uint64_t tightRow = std::uint64_t{image.getWidth()} * bpp / 8;
    const std::uint64_t paddedRow = exactRowBytes(image.getWidth(), bpp);
    if (tightRow * image.getHeight() > image.getSize()) return nullptr;
    auto* copy = static_cast<unsigned char*>(std::calloc(paddedRow * image.getHeight(), 1));
    if (copy == nullptr) return nullptr;
    for (std::uint64_t y = 0; y < image.getHeight(); ++y) {
        std::memcpy(copy + paddedRow * y, image.getData() + tightRow * y, tightRow);
    }
    return copy;
}

}  // namespace

FilePicture::~FilePicture() {
    free();
}

void FilePicture::free() {
    std::free(bits_);
    bits_ = nullptr;
}

CxImage* FilePicture::take(const Ogre::Image* loaded) {
    free();
    if (loaded == nullptr || loaded->getWidth() == 0 || loaded->getHeight() == 0) {
        return new (std::nothrow) CxImage();
    }
    const unsigned bpp = loaded->getBPP();
    if (sizeFits(loaded->getWidth(), loaded->getHeight(), bpp)) bits_ = paddedCopy(*loaded, bpp);
    if (bits_ == nullptr) return new (std::nothrow) CxImage();
    return new (std::nothrow) CxImage(&bits_, loaded->getWidth(), loaded->getHeight(), bpp,
                                      imageFormatOf(loaded->getFormat()));
}

}  // namespace keladjust
