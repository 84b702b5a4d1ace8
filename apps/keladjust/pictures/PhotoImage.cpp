#include "pictures/PhotoImage.h"

#include <new>

namespace keladjust::app {

namespace {

CxImage* adopt(unsigned char** bits, const Photo& photo) {
    const bool grey = photo.layout() == ChannelLayout::grey;
    return createCxImage(bits, photo.width(), photo.height(), grey ? 8 : 32,
                         grey ? IMAGE_FORMAT_GRAY : IMAGE_FORMAT_BGRA);
}

}  // namespace

PhotoImage::PhotoImage(Photo& photo)
    : bits_(photo.row(0)), image_(adopt(&bits_, photo), &releaseCxImage) {
    if (image_ == nullptr) throw std::bad_alloc();
}

}  // namespace keladjust::app
