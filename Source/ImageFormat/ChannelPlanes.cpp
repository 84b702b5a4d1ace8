// Splitting images into 8-bit channel planes and joining them again.

#include "ImageFormat/ChannelPlanes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "ImageFormat/ColourConversion.h"
#include "ImageFormat/Geometry.h"
#include "ImageFormat/PixelSpan.h"
#include "platform/Assertion.h"
#include "platform/FloatingPoint.h"

namespace {

using keladjust::ColourSpace;
using keladjust::PixelLayout;
using keladjust::PixelSpan;

void convertSpanToHsl(PixelSpan& span) {
    for (std::size_t i = 0; i < span.count; ++i) {
        const _tagMyRGBQUAD hsl =
            keladjust::rgbToHsl({span.blue[i], span.green[i], span.red[i], 0});
        span.red[i] = hsl.red;
        span.green[i] = hsl.green;
        span.blue[i] = hsl.blue;
    }
}

void convertSpanToRgb(PixelSpan& span) {
    for (std::size_t i = 0; i < span.count; ++i) {
        const _tagMyRGBQUAD rgb =
            keladjust::hslToRgb({span.blue[i], span.green[i], span.red[i], 0});
        span.red[i] = rgb.red;
        span.green[i] = rgb.green;
        span.blue[i] = rgb.blue;
    }
}

std::uint8_t* rowOf(const CxImage& image, unsigned y) {
    return image.pBits + std::size_t{image.effWidth} * y;
}

// Calls body(span) for every run of pixels of a row, from left to right.
template <class Body>
void forEachSpan(std::size_t width, Body body) {
    PixelSpan span;
    for (std::size_t x = 0; x < width; x += span.count) {
        span.x = static_cast<unsigned>(x);
        span.count = std::min(PixelSpan::capacity, width - x);
        body(span);
    }
}

// Row `y` of a plane; null for one without pixels.
std::uint8_t* planeRow(const CxImage* plane, unsigned y) {
    return plane == nullptr || plane->pBits == nullptr ? nullptr : rowOf(*plane, y);
}

bool canBecomePlane(const CxImage& plane, const CxImage& source) {
    const std::uint64_t needed = keladjust::exactRowBytes(source.width, 8) * source.height;
    return plane.ownsBits || plane.pBits == nullptr || needed <= plane.size;
}

// The planes in the order red, green, blue (or hue, saturation, lightness), alpha.
bool split(CxImage& source, ColourSpace space, const std::array<CxImage*, 4>& planes) {
    if (source.pBits == nullptr || source.format == IMAGE_FORMAT_GRAY ||
        source.format == IMAGE_FORMAT_UNKNOWN) {
        return false;
    }
    if (planes[0] == nullptr || planes[1] == nullptr || planes[2] == nullptr) return false;
    for (const CxImage* plane : planes) {
        if (plane == nullptr) continue;
        if (plane == &source || !canBecomePlane(*plane, source)) return false;
    }

    const bool hasPixels = source.width != 0 && source.height != 0;
    if (hasPixels && !keladjust::hasPixels(&source)) return false;  // its size wraps at 32 bits
    for (CxImage* plane : planes) {
        if (plane == nullptr) continue;
        plane->Destroy();
        const void* created = plane->Create(source.width, source.height, 8, IMAGE_FORMAT_RGB);
        if (hasPixels && created == nullptr) return false;
    }
    if (!hasPixels) return true;

    const PixelLayout layout = keladjust::layoutOf(source);
    for (unsigned y = 0; y < source.height; ++y) {
        keladjust::splitRow(
            layout, rowOf(source, y), source.width, space,
            {planeRow(planes[0], y), planeRow(planes[1], y), planeRow(planes[2], y)});
        if (std::uint8_t* alpha = planeRow(planes[3], y)) {
            keladjust::loadAlpha(layout, rowOf(source, y), source.width, alpha);
        }
    }
    return true;
}

// The programming error of joining planes that do not belong together. The reported texts are part
// of the interface, so they are written out rather than taken from an assert().
void checkPlanes(const CxImage& r, const CxImage& g, const CxImage& b, const CxImage* a) {
    const auto matches = [&r](const CxImage& plane) {
        return plane.GetWidth() == r.GetWidth() && plane.GetHeight() == r.GetHeight() &&
               plane.GetBpp() == 8;
    };
    if (matches(r) && matches(g) && matches(b) && (a == nullptr || matches(*a))) return;

    constexpr const char* source = "Source\\ImageFormat";
    constexpr const char* function = "CxImage::Combine";
    if (a != nullptr) {
        keladjust::platform::reportFailedAssertion(
            "(rw == gw && gw == bw && bw == aw) && (rh == gh && gh == bh && bh == ah) && "
            "(r->GetBpp() == g->GetBpp() && g->GetBpp() == b->GetBpp() && b->GetBpp() == "
            "a->GetBpp() && a->GetBpp() == 8)",
            source, 617, function);
    }
    keladjust::platform::reportFailedAssertion(
        "(rw == gw && gw == bw) && (rh == gh && gh == bh) && (r->GetBpp() == g->GetBpp() && "
        "g->GetBpp() == b->GetBpp() && b->GetBpp() == 8)",
        source, 622, function);
}

void loadLane(const std::uint8_t* row, const PixelSpan& span, std::uint8_t* lane) {
    if (row == nullptr) {
        std::fill_n(lane, span.count, std::uint8_t{0});
    } else {
        std::copy_n(row + span.x, span.count, lane);
    }
}

void storeAlpha(PixelLayout layout, const std::uint8_t* alpha, std::size_t count,
                std::uint8_t* pixels) {
    if (keladjust::bytesPerPixelOf(layout) != 4) return;
    for (std::size_t i = 0; i < count; ++i) {
        pixels[4 * i + 3] = alpha == nullptr ? std::uint8_t{0} : alpha[i];
    }
}

}  // namespace

namespace keladjust {

void splitRow(PixelLayout layout, const std::uint8_t* pixels, std::size_t width, ColourSpace space,
              const std::array<std::uint8_t*, 3>& rows) {
    forEachSpan(width, [&](PixelSpan& span) {
        loadSpan(layout, pixels + bytesPerPixelOf(layout) * span.x, span);
        if (space == ColourSpace::hsl) convertSpanToHsl(span);
        const std::array<const std::uint8_t*, 3> lanes{span.red, span.green, span.blue};
        for (std::size_t i = 0; i < lanes.size(); ++i) {
            if (rows[i] != nullptr) std::copy_n(lanes[i], span.count, rows[i] + span.x);
        }
    });
}

void joinRow(PixelLayout layout, const std::array<const std::uint8_t*, 3>& rows, std::size_t width,
             ColourSpace space, std::uint8_t* pixels) {
    forEachSpan(width, [&](PixelSpan& span) {
        loadLane(rows[0], span, span.red);
        loadLane(rows[1], span, span.green);
        loadLane(rows[2], span, span.blue);
        if (space == ColourSpace::hsl) convertSpanToRgb(span);
        storeSpan(layout, span, pixels + bytesPerPixelOf(layout) * span.x);
    });
}

}  // namespace keladjust

bool CxImage::SplitRGBA(CxImage* r, CxImage* g, CxImage* b, CxImage* a) {
    return split(*this, ColourSpace::rgb, {r, g, b, a});
}

bool CxImage::SplitHSLA(CxImage* h, CxImage* s, CxImage* l, CxImage* a) {
    return split(*this, ColourSpace::hsl, {h, s, l, a});
}

bool CxImage::Combine(CxImage* r, CxImage* g, CxImage* b, CxImage* a, int colorSpace) {
    if (r == nullptr || g == nullptr || b == nullptr) return false;
    checkPlanes(*r, *g, *b, a);

    const unsigned newWidth = r->width;
    const unsigned newHeight = r->height;
    const bool nothingToWrite = newWidth == 0 || newHeight == 0 || bpp == 0;
    if (!nothingToWrite) {
        if (!keladjust::sizeFits(newWidth, newHeight, std::max(bpp, 8u))) return false;
        const std::uint64_t needed = keladjust::exactRowBytes(newWidth, bpp) * newHeight;
        if (!ownsBits && needed > size) return false;
    }
    if (Create(newWidth, newHeight, bpp, format) == nullptr) return nothingToWrite;
    if (pBits == nullptr) return true;

    const keladjust::platform::DefaultFloatingPoint scope;
    const PixelLayout layout = keladjust::layoutOf(*this);
    const ColourSpace space = colorSpace == 1 ? ColourSpace::hsl : ColourSpace::rgb;
    for (unsigned y = 0; y < height; ++y) {
        keladjust::joinRow(layout, {planeRow(r, y), planeRow(g, y), planeRow(b, y)}, width, space,
                           rowOf(*this, y));
        if (a != nullptr) storeAlpha(layout, planeRow(a, y), width, rowOf(*this, y));
    }
    return true;
}
