#include "ImageFormat/PackedSpan.h"

#include "ImageFormat/Interleave.h"

namespace keladjust {

void loadSpan(PixelLayout layout, const std::uint8_t* pixels, PackedSpan& span) {
    if (storesLanesWhole(layout)) {
        packPixels(pixels, bytesPerPixelOf(layout), redFirst(layout), span.count, span.pixels);
        return;
    }
    PixelSpan lanes;
    lanes.count = span.count;
    loadSpan(layout, pixels, lanes);
    interleave(lanes.blue, lanes.green, lanes.red, 4, span.count, span.pixels);
}

void storeSpan(PixelLayout layout, const PackedSpan& span, std::uint8_t* pixels) {
    if (storesLanesWhole(layout)) {
        unpackPixels(span.pixels, bytesPerPixelOf(layout), redFirst(layout), span.count, pixels);
        return;
    }
    PixelSpan lanes;
    lanes.count = span.count;
    deinterleave(span.pixels, 4, span.count, lanes.blue, lanes.green, lanes.red);
    storeSpan(layout, lanes, pixels);
}

void roundTrip(PixelLayout layout, PackedSpan& span) {
    if (layout == PixelLayout::none || storesLanesWhole(layout)) return;
    std::uint8_t pixels[2 * PackedSpan::capacity];
    storeSpan(layout, span, pixels);
    loadSpan(layout, pixels, span);
}

}  // namespace keladjust
