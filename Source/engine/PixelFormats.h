#ifndef KELADJUST_ENGINE_PIXELFORMATS_H
#define KELADJUST_ENGINE_PIXELFORMATS_H

#include <OgrePixelFormat.h>
#include <keladjust/keladjust.h>

namespace keladjust {

/// The library's pixel formats under the engine's names, which give the bytes of a word from the
/// highest to the lowest, and of three bytes likewise.
struct PixelFormatPair {
    _ImagePixelFormat image;
    Ogre::PixelFormat engine;
};

inline constexpr PixelFormatPair pixelFormatPairs[] = {
    {IMAGE_FORMAT_GRAY, Ogre::PF_L8},       {IMAGE_FORMAT_RGB, Ogre::PF_B8G8R8},
    {IMAGE_FORMAT_BGR, Ogre::PF_R8G8B8},    {IMAGE_FORMAT_RGBA, Ogre::PF_A8B8G8R8},
    {IMAGE_FORMAT_BGRA, Ogre::PF_A8R8G8B8},
};

constexpr Ogre::PixelFormat enginePixelFormat(_ImagePixelFormat format) {
    for (const PixelFormatPair& pair : pixelFormatPairs) {
        if (pair.image == format) return pair.engine;
    }
    return Ogre::PF_UNKNOWN;
}

constexpr _ImagePixelFormat imageFormatOf(Ogre::PixelFormat format) {
    for (const PixelFormatPair& pair : pixelFormatPairs) {
        if (pair.engine == format) return pair.image;
    }
    return IMAGE_FORMAT_UNKNOWN;
}

}  // namespace keladjust

#endif
