#ifndef KELADJUST_HOST_FILEPICTURE_H
#define KELADJUST_HOST_FILEPICTURE_H

#include <keladjust/CxImage.h>

namespace Ogre {
class Image;
}

namespace keladjust {

/// Pixels of the file that was loaded last, with the row padding that images have. Images made
/// from it hold them by the address of this object's pointer, so it outlives those images.
class FilePicture {
public:
    FilePicture() = default;
    ~FilePicture();
    FilePicture(const FilePicture&) = delete;
    FilePicture& operator=(const FilePicture&) = delete;

    /// Frees the pixels of the file before and takes over those of `loaded`.
    /// @return a new image; without pixels if `loaded` is null or too large
    CxImage* take(const Ogre::Image* loaded);

private:
    void free();

    /// From malloc, because CxImage::Copy() may free it; it sets the pointer to null then.
    unsigned char* bits_ = nullptr;
};

}  // namespace keladjust

#endif
