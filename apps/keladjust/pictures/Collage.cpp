#include "pictures/Collage.h"

#include <algorithm>

namespace keladjust::app {

Photo whiteSheet(std::uint64_t width, std::uint64_t height, ChannelLayout layout) {
    Photo sheet(width, height, layout);
    std::fill_n(sheet.row(0), sheet.stride() * sheet.height(), static_cast<unsigned char>(255));
    return sheet;
}

void paste(const Photo& part, Photo& sheet, std::uint32_t left, std::uint32_t top) {
    for (std::uint32_t y = 0; y < part.height(); ++y) {
        std::copy_n(part.row(y), part.width() * part.bytesPerPixel(), sheet.pixel(left, top + y));
    }
}

}  // namespace keladjust::app
