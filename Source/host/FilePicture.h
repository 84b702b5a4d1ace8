#ifndef KELADJUST_HOST_FILEPICTURE_H
#define KELADJUST_HOST_FILEPICTURE_H

#include <keladjust/CxImage.h>

#include "engine/EngineModule.h"

namespace keladjust {

/// Loads pictures from files. The pixels of the last one, with the row padding that images have,
/// are kept for its image until the next one is loaded.
class FilePicture : private EnginePictureTaker {
public:
    FilePicture() = default;
    ~FilePicture();
    FilePicture(const FilePicture&) = delete;
    FilePicture& operator=(const FilePicture&) = delete;

    /// Frees the pixels of the file before and has the engine load another; null is none.
    /// @return a new image; without pixels if there is no such picture or it is too large
    CxImage* load(EngineModule* engine, const char* fileName);

private:
    void take(const EnginePicture& picture) noexcept override;

    unsigned int width_ = 0;
    unsigned int height_ = 0;
    unsigned int bpp_ = 0;
    _ImagePixelFormat format_ = IMAGE_FORMAT_UNKNOWN;
};

}  // namespace keladjust

#endif
