#include <keladjust/CxImage.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/KeptPixels.h"

namespace {

_ImagePixelFormat formatOf(unsigned bytesPerPixel, _ImagePixelFormat format) {
    return bytesPerPixel == 1 ? IMAGE_FORMAT_GRAY : format;
}

void resetGeometry(CxImage& image) {
    image.width = 0;
    image.height = 0;
    image.bpp = 0;
    image.bytesPerPixel = 0;
    image.effWidth = 0;
    image.size = 0;
    image.format = IMAGE_FORMAT_UNKNOWN;
}

void setGeometry(CxImage& image, unsigned width, unsigned height, unsigned bpp,
                 _ImagePixelFormat format) {
    image.width = width;
    image.height = height;
    image.bpp = bpp;
    image.bytesPerPixel = keladjust::bytesPerPixelOf(bpp);
    image.effWidth = keladjust::wrappedRowBytes(width, bpp);
    image.size = image.effWidth * height;
    image.format = formatOf(image.bytesPerPixel, format);
}

// The pixel's first byte; null outside the image, in an image of unknown format, and where a size
// that wraps at 32 bits would put the pixel outside the buffer.
unsigned char* pixelAt(const CxImage& image, int x, int y) {
    if (image.pBits == nullptr || x < 0 || y < 0 || image.format == IMAGE_FORMAT_UNKNOWN) {
        return nullptr;
    }
    const auto column = static_cast<unsigned>(x);
    const auto row = static_cast<unsigned>(y);
    if (column >= image.width || row >= image.height) return nullptr;
    const unsigned rowOffset = image.effWidth * row;
    const unsigned columnOffset = image.bytesPerPixel * column;
    const std::uint64_t offset = static_cast<std::uint64_t>(rowOffset) + columnOffset;
    if (offset + image.bytesPerPixel > image.size) return nullptr;
    return image.pBits + offset;
}

struct Free {
    void operator()(unsigned char* bits) const { std::free(bits); }
};
using OwnedBits = std::unique_ptr<unsigned char, Free>;

// Parts the image from its buffer and gives what is to be freed then. An adopted buffer that the
// host's pointer does not name any more has been freed by a copy of the image; else that pointer is
// set to null.
unsigned char* letGo(CxImage& image) {
    unsigned char* const bits = std::exchange(image.pBits, nullptr);
    unsigned char** const host = std::exchange(image.ppHostBits, nullptr);
    if (image.ownsBits || host == nullptr) return bits;
    if (*host != bits) return nullptr;
    *host = nullptr;
    return bits;
}

// The image has become the owner of its buffer; the library does not keep it any longer.
void takeFromKept(CxImage& image) {
    if (image.ppHostBits != &keladjust::keptPixels().bits) return;
    keladjust::keptPixels().bits = nullptr;
    image.ppHostBits = nullptr;
}

std::uint16_t readWord(const unsigned char* p) {
    std::uint16_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

}  // namespace

CxImage::CxImage() : pBits(nullptr), ppHostBits(nullptr), ownsBits(true) {
    resetGeometry(*this);
}

CxImage::CxImage(unsigned int newWidth, unsigned int newHeight, unsigned int newBpp,
                 _ImagePixelFormat newFormat)
    : CxImage() {
    Create(newWidth, newHeight, newBpp, newFormat);
}

CxImage::CxImage(unsigned char** ppBits, unsigned int newWidth, unsigned int newHeight,
                 unsigned int newBpp, _ImagePixelFormat newFormat)
    : pBits(ppBits != nullptr ? *ppBits : nullptr), ppHostBits(ppBits), ownsBits(false) {
    setGeometry(*this, newWidth, newHeight, newBpp, newFormat);
}

CxImage::~CxImage() {
    if (pBits != nullptr && ownsBits) std::free(pBits);
    resetGeometry(*this);
}

void* CxImage::Create(unsigned int newWidth, unsigned int newHeight, unsigned int newBpp,
                      _ImagePixelFormat newFormat) {
    Destroy();
    if (newWidth == 0 || newHeight == 0 || newBpp == 0) return nullptr;
    if (!keladjust::sizeFits(newWidth, newHeight, newBpp)) return nullptr;
    if (ownsBits) {
        const std::size_t bytes =
            std::size_t{keladjust::wrappedRowBytes(newWidth, newBpp)} * newHeight;
        pBits = static_cast<unsigned char*>(std::calloc(bytes, 1));
        if (pBits == nullptr) return nullptr;
    }
    setGeometry(*this, newWidth, newHeight, newBpp, newFormat);
    return this;
}

void CxImage::Destroy() {
    if (pBits != nullptr && ownsBits) {
        std::free(pBits);
        pBits = nullptr;
    }
    resetGeometry(*this);
}

unsigned char* CxImage::GetBits() {
    return pBits;
}
unsigned int CxImage::GetWidth() const {
    return width;
}
unsigned int CxImage::GetHeight() const {
    return height;
}
unsigned int CxImage::GetBpp() const {
    return bpp;
}
unsigned int CxImage::GetEffWidth() const {
    return effWidth;
}
long CxImage::GetSize() {
    return static_cast<long>(size);
}
_ImagePixelFormat CxImage::getFormat() {
    return format;
}

_tagMyRGBQUAD CxImage::GetPixelColor(int x, int y, bool getAlpha) {
    constexpr _tagMyRGBQUAD none{0, 0, 0, 0};
    const unsigned char* p = pixelAt(*this, x, y);
    if (p == nullptr) return none;

    if (format == IMAGE_FORMAT_GRAY && bytesPerPixel == 1) return {p[0], p[0], p[0], p[0]};
    if (format == IMAGE_FORMAT_RGB && bytesPerPixel == 3) return {p[2], p[1], p[0], 0};
    if (format == IMAGE_FORMAT_BGR && bytesPerPixel == 3) return {p[0], p[1], p[2], 0};
    if (format == IMAGE_FORMAT_RGBA && bytesPerPixel == 4) {
        return {p[2], p[1], p[0], getAlpha ? p[3] : none.alpha};
    }
    if (format == IMAGE_FORMAT_BGRA && bytesPerPixel == 4) {
        return {p[0], p[1], p[2], getAlpha ? p[3] : none.alpha};
    }
    if (bytesPerPixel == 2 && (format == IMAGE_FORMAT_RGB || format == IMAGE_FORMAT_BGR)) {
        const std::uint16_t word = readWord(p);
        const auto low = static_cast<unsigned char>(word & 31);
        const auto middle = static_cast<unsigned char>(word >> 5);
        const auto high = static_cast<unsigned char>(static_cast<std::int16_t>(word) >> 11);
        if (format == IMAGE_FORMAT_RGB) return {low, middle, high, 0};
        return {high, middle, low, 0};
    }
    return none;
}

void CxImage::SetPixelColor(int x, int y, _tagMyRGBQUAD colour) {
    unsigned char* p = pixelAt(*this, x, y);
    if (p == nullptr) return;

    if (format == IMAGE_FORMAT_GRAY && bytesPerPixel == 1) {
        p[0] = colour.red;
    } else if (bytesPerPixel == 2 && (format == IMAGE_FORMAT_RGB || format == IMAGE_FORMAT_BGR)) {
        const unsigned high = format == IMAGE_FORMAT_RGB ? colour.red : colour.blue;
        const unsigned low = format == IMAGE_FORMAT_RGB ? colour.blue : colour.red;
        const auto word = static_cast<std::uint16_t>((high * 64 + colour.green) * 32 + low);
        std::memcpy(p, &word, sizeof word);
    } else if ((format == IMAGE_FORMAT_RGB && bytesPerPixel == 3) ||
               (format == IMAGE_FORMAT_RGBA && bytesPerPixel == 4)) {
        p[0] = colour.red;
        p[1] = colour.green;
        p[2] = colour.blue;
        if (bytesPerPixel == 4) p[3] = colour.alpha;
    } else if ((format == IMAGE_FORMAT_BGR && bytesPerPixel == 3) ||
               (format == IMAGE_FORMAT_BGRA && bytesPerPixel == 4)) {
        p[0] = colour.blue;
        p[1] = colour.green;
        p[2] = colour.red;
        if (bytesPerPixel == 4) p[3] = colour.alpha;
    }
}

void CxImage::Copy(const CxImage* source) {
    if (source == nullptr) return;
    const unsigned char* const sourceBits =
        keladjust::hasLostKeptPixels(*source) ? nullptr : source->pBits;
    const bool suits = width == source->width && height == source->height && bpp == source->bpp &&
                       !keladjust::hasLostKeptPixels(*this);
    // Freed last: shallow copies share a buffer, so it may be what is copied from.
    const OwnedBits old(suits ? nullptr : letGo(*this));

    width = source->width;
    height = source->height;
    bpp = source->bpp;
    bytesPerPixel = source->bytesPerPixel;
    effWidth = source->effWidth;
    size = source->size;
    format = source->format;
    ownsBits = source->ownsBits;

    if (pBits == nullptr) {
        ownsBits = true;
        if (size == 0) return;
        pBits = static_cast<unsigned char*>(std::calloc(size, 1));
        if (pBits == nullptr) {
            resetGeometry(*this);
            return;
        }
    } else if (ownsBits) {
        takeFromKept(*this);
    }
    // Shallow copies share a buffer, so the two may be one and the same.
    if (sourceBits != nullptr) std::memmove(pBits, sourceBits, size);
}

void CxImage::Copy(const CxImage& source) {
    if (source.pBits == nullptr || keladjust::hasLostKeptPixels(source)) return;
    Copy(&source);
}

// Hosts and library agree on these places: behind the pointers, that to the virtual functions among
// them, members of 32 bits. The class is polymorphic, which makes offsetof
// conditionally supported; every compiler the library is built with supports it.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif
constexpr std::size_t word = sizeof(void*);
static_assert(offsetof(CxImage, pBits) == word && offsetof(CxImage, ppHostBits) == 2 * word &&
              offsetof(CxImage, ownsBits) == 3 * word && offsetof(CxImage, width) == 3 * word + 4 &&
              offsetof(CxImage, height) == 3 * word + 8 &&
              offsetof(CxImage, bpp) == 3 * word + 12 &&
              offsetof(CxImage, bytesPerPixel) == 3 * word + 16 &&
              offsetof(CxImage, effWidth) == 3 * word + 20 &&
              offsetof(CxImage, size) == 3 * word + 24 &&
              offsetof(CxImage, format) == 3 * word + 28);
static_assert(sizeof(CxImage) == (word == 8 ? 56 : 44));
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
static_assert(sizeof(_ImagePixelFormat) == 4 && sizeof(_tagMyRGBQUAD) == 4);
