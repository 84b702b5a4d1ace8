#include "host/FilePicture.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "ImageFormat/Geometry.h"

namespace keladjust {

namespace {

// Null if memory is short or the rows hold less than they should.
unsigned char* paddedCopy(const EnginePicture& picture) {
    const std::uint64_t tightRow = std::uint64_t{picture.width} * picture.bitsPerPixel / 8;
    const std::uint64_t paddedRow = exactRowBytes(picture.width, picture.bitsPerPixel);
    if (tightRow * picture.height > picture.byteSize) return nullptr;
    auto* copy = static_cast<unsigned char*>(std::calloc(paddedRow * picture.height, 1));
    if (copy == nullptr) return nullptr;
    for (std::uint64_t y = 0; y < picture.height; ++y) {
        std::memcpy(copy + paddedRow * y, picture.pixels + tightRow * y, tightRow);
    }
    return copy;
}

}  // namespace

FilePicture::~FilePicture() {
    free();
}

void FilePicture::free() {
    std::free(bits_);
    bits_ = nullptr;
}

CxImage* FilePicture::load(EngineModule* engine, const char* fileName) {
    free();
    if (engine == nullptr || !engine->loadPicture(fileName, *this) || bits_ == nullptr) {
        return new (std::nothrow) CxImage();
    }
    return new (std::nothrow) CxImage(&bits_, width_, height_, bpp_, format_);
}

void FilePicture::take(const EnginePicture& picture) noexcept {
    width_ = picture.width;
    height_ = picture.height;
    bpp_ = picture.bitsPerPixel;
    format_ = picture.format;
    if (width_ != 0 && height_ != 0 && sizeFits(width_, height_, bpp_)) bits_ = paddedCopy(picture);
}

}  // namespace keladjust
