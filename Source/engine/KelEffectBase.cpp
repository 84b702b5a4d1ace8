#include "engine/KelEffectBase.h"

#include <algorithm>
#include <cstdarg>
#include <string>

#include "ImageFormat/Geometry.h"
#include "engine/EngineLog.h"
#include "engine/KelOgreBase.h"
#include "engine/PictureFile.h"

using keladjust::logCurrentException;
using keladjust::logMessage;

namespace {

std::size_t rowBytesOf(std::uint32_t width, Ogre::PixelFormat format) {
    return keladjust::paddedRowBytes(width * Ogre::PixelUtil::getNumElemBytes(format));
}

bool fitsTexture(std::uint32_t width, std::uint32_t height) {
    const std::uint32_t maximum = KelOgreBase::maximumTextureSize();
    const std::string limit = std::to_string(maximum) + "of supported";
    if (width > maximum) {
        logMessage("Picture width is large max texture size" + limit);
        return false;
    }
    if (height > maximum) {
        logMessage("Picture height is large max texture size" + limit);
        return false;
    }
    return true;
}

}  // namespace

KelEffectBase::~KelEffectBase() = default;

void KelEffectBase::setRenderSize(std::uint32_t width, std::uint32_t height) {
    if (width == renderWidth_ && height == renderHeight_) return;
    renderWidth_ = width;
    renderHeight_ = height;
    sizeChanged_ = true;
}

const _ImageParam* KelEffectBase::input(std::uint32_t index) const {
    const auto place = inputs_.find(index);
    return place == inputs_.end() ? nullptr : &place->second;
}

void KelEffectBase::removeInput(std::uint32_t index) {
    inputs_.erase(index);
    inputTextures_.erase(index);
    inputFiles_.erase(index);
}

void KelEffectBase::setInputTexture(const Ogre::TexturePtr& texture, std::uint32_t index) {
    if (texture == nullptr) {
        logMessage("Input parameter is NULL!");
        return;
    }
    if (!fitsTexture(texture->getWidth(), texture->getHeight())) return;
    removeInput(index);
    inputTextures_[index] = texture;
}

void KelEffectBase::setInputImage(unsigned char* pixels, std::uint32_t width, std::uint32_t height,
                                  std::uint32_t inputIndex, std::uint32_t pixelFormat) {
    setInputImages(pixels, width, height, 1, inputIndex, pixelFormat);
}

void KelEffectBase::setInputImages(unsigned char* pixels, std::uint32_t width, std::uint32_t height,
                                   std::uint32_t count, ...) {
    va_list arguments;
    va_start(arguments, count);
    for (std::uint32_t i = 0; i < count; ++i) {
        // The checker loses sight of va_start() in the loop.
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
        const auto index = va_arg(arguments, std::uint32_t);
        const auto format = static_cast<Ogre::PixelFormat>(va_arg(arguments, std::uint32_t));
        storeInput(
            {pixels, true, width, height, index, format, rowBytesOf(width, format) * height});
    }
    va_end(arguments);
}

void KelEffectBase::storeInput(const _ImageParam& input) {
    removeInput(input.index);
    inputs_[input.index] = input;
}

void KelEffectBase::destroyBase() {
    delete this;
}

bool KelEffectBase::isStopped() const {
    return stopped_;
}

void KelEffectBase::setShaderParameters(const void*) {}

void KelEffectBase::setFlip(bool flip) {
    flip_ = flip;
}

bool KelEffectBase::flips() const {
    return flip_;
}

std::uint32_t KelEffectBase::inputCount() const {
    return static_cast<std::uint32_t>(inputs_.size() + inputTextures_.size());
}

void KelEffectBase::resizeOutput(std::uint32_t width, std::uint32_t height,
                                 unsigned char* outputBuffer) {
    output_.width = width;
    output_.height = height;
    output_.data = outputBuffer;
    output_.byteSize = std::size_t{width} * height * 4;
}

void KelEffectBase::setInputImageFile(const char* path, std::uint32_t index) {
    if (path == nullptr) {
        logMessage("Image path is NULL!");
        return;
    }
    Ogre::Image image;
    try {
        keladjust::loadPictureFile(path, image);
    } catch (...) {
        logCurrentException("Input picture");
        logMessage("Pictrue path is not right or it did not been add to resource group.");
        return;
    }
    if (!fitsTexture(image.getWidth(), image.getHeight())) return;
    removeInput(index);
    Ogre::Image& kept = inputFiles_[index] = image;
    inputs_[index] = {kept.getData(),   true,          kept.getWidth(), kept.getHeight(), index,
                      kept.getFormat(), kept.getSize()};
}

void KelEffectBase::flipVertical(unsigned char* pixels, std::uint32_t width, std::uint32_t height) {
    const std::size_t rowBytes = (std::size_t{width} * 32 + 31) / 32 * 4;
    row_.resize(rowBytes);
    for (std::uint32_t i = 0; i < height / 2; ++i) {
        unsigned char* upper = pixels + rowBytes * i;
        unsigned char* lower = pixels + rowBytes * (height - 1 - i);
        std::copy_n(upper, rowBytes, row_.data());
        std::copy_n(lower, rowBytes, upper);
        std::copy_n(row_.data(), rowBytes, lower);
    }
}
