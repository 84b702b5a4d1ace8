#ifndef KELADJUST_ENGINE_PICTUREFILE_H
#define KELADJUST_ENGINE_PICTUREFILE_H

#include <cstdint>
#include <string>

namespace Ogre {
class Image;
}

namespace keladjust {

/// Frees what `image` holds and reads the file into it. A name without a folder is looked up in the
/// engine's default resource group, then in the current folder.
/// @throws Ogre::Exception, the image being empty
void loadPictureFile(const std::string& path, Ogre::Image& image);

/// Writes tight rows of pixels to a file, whose ending tells the kind.
/// @param format one of Ogre::PixelFormat
/// @throws Ogre::Exception
void storePictureFile(const std::string& path, const unsigned char* pixels, std::uint32_t width,
                      std::uint32_t height, std::uint32_t format);

}  // namespace keladjust

#endif
