#include "ImageFormat/PixelSpan.h"

#include <cstring>

#include "ImageFormat/Interleave.h"

namespace keladjust {

namespace {

// 16-bit pixels: the highest five bits are one lane, the lowest five another. Fields are not
// scaled; the middle one reads two bits of the highest along, and the highest is sign-extended.
void loadWords(const std::uint8_t* pixels, std::size_t count, std::uint8_t* high,
               std::uint8_t* middle, std::uint8_t* low) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint16_t word;
        std::memcpy(&word, pixels + 2 * i, sizeof word);
        low[i] = static_cast<std::uint8_t>(word & 31);
        middle[i] = static_cast<std::uint8_t>(word >> 5);
        high[i] = static_cast<std::uint8_t>(static_cast<std::int16_t>(word) >> 11);
    }
}

std::uint16_t packWord(unsigned high, unsigned middle, unsigned low) {
    return static_cast<std::uint16_t>((high * 64 + middle) * 32 + low);
}

void storeWords(const std::uint8_t* high, const std::uint8_t* middle, const std::uint8_t* low,
                std::size_t count, std::uint8_t* pixels) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint16_t word = packWord(high[i], middle[i], low[i]);
        std::memcpy(pixels + 2 * i, &word, sizeof word);
    }
}

}  // namespace

PixelLayout layoutOf(const CxImage& image) {
    const auto pick = [&image](unsigned bytes, PixelLayout layout) {
        return image.bytesPerPixel == bytes ? layout : PixelLayout::none;
    };
    switch (image.format) {
        case IMAGE_FORMAT_GRAY:
            return pick(1, PixelLayout::gray8);
        case IMAGE_FORMAT_RGB:
            return image.bytesPerPixel == 2 ? PixelLayout::rgb16 : pick(3, PixelLayout::rgb24);
        case IMAGE_FORMAT_BGR:
            return image.bytesPerPixel == 2 ? PixelLayout::bgr16 : pick(3, PixelLayout::bgr24);
        case IMAGE_FORMAT_RGBA:
            return pick(4, PixelLayout::rgba32);
        case IMAGE_FORMAT_BGRA:
            return pick(4, PixelLayout::bgra32);
        default:
            return PixelLayout::none;
    }
}

void loadSpan(PixelLayout layout, const std::uint8_t* pixels, PixelSpan& span) {
    switch (layout) {
        case PixelLayout::gray8:
            std::memcpy(span.red, pixels, span.count);
            std::memcpy(span.green, pixels, span.count);
            std::memcpy(span.blue, pixels, span.count);
            break;
        case PixelLayout::rgb16:
            loadWords(pixels, span.count, span.red, span.green, span.blue);
            break;
        case PixelLayout::bgr16:
            loadWords(pixels, span.count, span.blue, span.green, span.red);
            break;
        case PixelLayout::rgb24:
        case PixelLayout::bgr24:
        case PixelLayout::rgba32:
        case PixelLayout::bgra32:
            deinterleave(pixels, bytesPerPixelOf(layout), span.count,
                         redFirst(layout) ? span.red : span.blue, span.green,
                         redFirst(layout) ? span.blue : span.red);
            break;
        case PixelLayout::none:
            std::memset(span.red, 0, span.count);
            std::memset(span.green, 0, span.count);
            std::memset(span.blue, 0, span.count);
            break;
    }
}

void storeSpan(PixelLayout layout, const PixelSpan& span, std::uint8_t* pixels) {
    switch (layout) {
        case PixelLayout::gray8:
            std::memcpy(pixels, span.red, span.count);
            break;
        case PixelLayout::rgb16:
            storeWords(span.red, span.green, span.blue, span.count, pixels);
            break;
        case PixelLayout::bgr16:
            storeWords(span.blue, span.green, span.red, span.count, pixels);
            break;
        case PixelLayout::rgb24:
        case PixelLayout::bgr24:
        case PixelLayout::rgba32:
        case PixelLayout::bgra32:
            interleave(redFirst(layout) ? span.red : span.blue, span.green,
                       redFirst(layout) ? span.blue : span.red, bytesPerPixelOf(layout), span.count,
                       pixels);
            break;
        case PixelLayout::none:
            break;
    }
}

void loadAlpha(PixelLayout layout, const std::uint8_t* pixels, std::size_t count,
               std::uint8_t* alpha) {
    switch (layout) {
        case PixelLayout::gray8:
            std::memcpy(alpha, pixels, count);
            break;
        case PixelLayout::rgba32:
        case PixelLayout::bgra32:
            for (std::size_t i = 0; i < count; ++i) alpha[i] = pixels[4 * i + 3];
            break;
        default:
            std::memset(alpha, 0, count);
            break;
    }
}

}  // namespace keladjust
