#include "pictures/PhotoImage.h"

#include <new>

namespace keladjust::app {

namespace {

CxImage* adopt(unsigned char** bits, const Photo& photo, std::uint32_t rows) {
    const bool grey = photo.layout() == ChannelLayout::grey;
    return createCxImage(bits, photo.width(), rows, grey ? 8 : 32,
                         grey ? IMAGE_FORMAT_GRAY : IMAGE_FORMAT_BGRA);
}

}  // namespace

PhotoImage::PhotoImage(Photo& photo) : PhotoImage(photo, 0, photo.height()) {}

PhotoImage::PhotoImage(Photo& photo, std::uint32_t firstRow, std::uint32_t rows)
    : bits_(photo.row(firstRow)), image_(adopt(&bits_, photo, rows), &releaseCxImage) {
    if (image_ == nullptr) throw std::bad_alloc();
}

}  // namespace keladjust::app
