#ifndef KELADJUST_ENGINE_PICTUREROWS_H
#define KELADJUST_ENGINE_PICTUREROWS_H

#include <OgrePixelFormat.h>

#include <cstdint>
#include <vector>

#include "engine/EffectRecords.h"

namespace keladjust {

/// The picture's pixels as the engine takes them. Rows whose padding it cannot skip are copied,
/// without it, to `tightRows`.
Ogre::PixelBox uploadBox(const _ImageParam& picture, std::vector<unsigned char>& tightRows);

/// True for the pairs of depth and format that a render can give back.
bool isRenderable(Ogre::PixelFormat format, std::uint32_t bytesPerPixel);

/// Stores a render, tight rows of blue, green, red, alpha, as a picture of 24 or 8 bits: pixels in
/// the order of `format`, grey being red, rows padded to four bytes; padding stays as it is.
void storeRender(const unsigned char* render, std::uint32_t width, std::uint32_t height,
                 Ogre::PixelFormat format, unsigned char* pixels);

}  // namespace keladjust

#endif
