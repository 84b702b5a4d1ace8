#ifndef KELADJUST_ENGINE_MANUALTEXTURE_H
#define KELADJUST_ENGINE_MANUALTEXTURE_H

#include <OgrePixelFormat.h>
#include <OgreTexture.h>

#include <cstdint>
#include <string>

namespace keladjust {

/// What the engine needs to know to make a texture without mipmaps.
struct TextureShape {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;
    Ogre::PixelFormat format;
};

/// Makes a texture in the default group: of two dimensions if the depth is 1, else of three.
/// @throws Ogre::Exception if the driver cannot make it; the name stays free then
Ogre::TexturePtr createManualTexture(const std::string& name, const TextureShape& shape, int usage);

}  // namespace keladjust

#endif
