#ifndef KELADJUST_IMAGEFORMAT_KEPTPIXELS_H
#define KELADJUST_IMAGEFORMAT_KEPTPIXELS_H

#include <keladjust/CxImage.h>

#include <cstddef>

namespace keladjust {

/// Pixels that the library keeps for images, which adopt them as they adopt a host's: those of the
/// file that was loaded last. Whoever frees them, an image by CxImage::Copy() or the library with
/// the next file, sets the pointer to null; so each buffer is freed once.
struct KeptPixels {
    unsigned char* bits = nullptr;
    std::size_t size = 0;
};

KeptPixels& keptPixels();

/// True if the image has adopted kept pixels that are not kept any more, or not as many: they have
/// been freed, or are another image's own. It must not touch them.
bool hasLostKeptPixels(const CxImage& image);

}  // namespace keladjust

#endif
