#include "Adjuster.h"

#include <memory>
#include <new>

namespace keladjust::app {

void Adjuster::adjust(Photo& photo, const _AdjustParam& record) {
    const bool grey = photo.layout() == PixelLayout::grey;
    unsigned char* bits = photo.row(0);
    const std::unique_ptr<CxImage, decltype(&releaseCxImage)> image(
        createCxImage(&bits, photo.width(), photo.height(), grey ? 8 : 32,
                      grey ? IMAGE_FORMAT_GRAY : IMAGE_FORMAT_BGRA),
        &releaseCxImage);
    if (!image) throw std::bad_alloc();
    const std::lock_guard lock(oneAtATime_);
    doAdjust(image.get(), record);
}

}  // namespace keladjust::app
