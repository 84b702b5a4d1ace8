#include "ImageFormat/KeptPixels.h"

namespace keladjust {

KeptPixels& keptPixels() {
    static constinit KeptPixels kept;
    return kept;
}

bool hasLostKeptPixels(const CxImage& image) {
    const KeptPixels& kept = keptPixels();
    return image.ppHostBits == &kept.bits && !image.ownsBits &&
           (image.pBits != kept.bits || image.size > kept.size);
}

}  // namespace keladjust
