#include "host/FilePicture.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/KeptPixels.h"

namespace keladjust {

namespace {

void freeKept() {
    std::free(keptPixels().bits);
    keptPixels() = {};
}

// Nothing if memory is short or the rows hold less than they should. From malloc, because images
// may free it.
KeptPixels paddedCopy(const EnginePicture& picture) {
    const std::uint64_t tightRow = std::uint64_t{picture.width} * picture.bitsPerPixel / 8;
    const std::uint64_t paddedRow = exactRowBytes(picture.width, picture.bitsPerPixel);
    if (tightRow * picture.height > picture.byteSize) return {};
    const auto size = static_cast<std::size_t>(paddedRow * picture.height);
    if (size != paddedRow * picture.height) return {};
    auto* copy = static_cast<unsigned char*>(std::calloc(size, 1));
    if (copy == nullptr) return {};
    for (std::uint64_t y = 0; y < picture.height; ++y) {
        std::memcpy(copy + paddedRow * y, picture.pixels + tightRow * y,
                    static_cast<std::size_t>(tightRow));
    }
    return {copy, size};
}

}  // namespace

FilePicture::~FilePicture() {
    freeKept();
}

CxImage* FilePicture::load(EngineModule* engine, const char* fileName) {
    freeKept();
    KeptPixels& kept = keptPixels();
    if (engine == nullptr || !engine->loadPicture(fileName, *this) || kept.bits == nullptr) {
        return new (std::nothrow) CxImage();
    }
    return new (std::nothrow) CxImage(&kept.bits, width_, height_, bpp_, format_);
}

void FilePicture::take(const EnginePicture& picture) noexcept {
    width_ = picture.width;
    height_ = picture.height;
    bpp_ = picture.bitsPerPixel;
    format_ = picture.format;
    if (width_ != 0 && height_ != 0 && sizeFits(width_, height_, bpp_)) {
        keptPixels() = paddedCopy(picture);
    }
}

}  // namespace keladjust
