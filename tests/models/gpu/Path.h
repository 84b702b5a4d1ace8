#ifndef KELADJUST_TESTS_MODELS_GPU_PATH_H
#define KELADJUST_TESTS_MODELS_GPU_PATH_H

#include <keladjust/CxImage.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "models/gpu/Adjustment.h"
#include "models/gpu/RangeVignette.h"
#include "models/gpu/Texture.h"

/// What an adjustment on the GPU path makes of a picture: two programs by their models, the rest by
/// the library's own stages.
namespace keladjust::test::gpu {

/// Pictures that the engine has a pixel format for.
inline bool isRenderable(const CxImage& image) {
    switch (image.format) {
        case IMAGE_FORMAT_GRAY:
            return image.bpp == 8;
        case IMAGE_FORMAT_RGB:
        case IMAGE_FORMAT_BGR:
            return image.bpp == 24;
        case IMAGE_FORMAT_RGBA:
        case IMAGE_FORMAT_BGRA:
            return image.bpp == 32;
        default:
            return false;
    }
}

inline Texture uploaded(CxImage& image) {
    std::vector<std::uint8_t> rgba;
    rgba.reserve(std::size_t{image.width} * image.height * 4);
    for (int y = 0; y < static_cast<int>(image.height); ++y) {
        for (int x = 0; x < static_cast<int>(image.width); ++x) {
            const _tagMyRGBQUAD p = image.GetPixelColor(x, y, true);
            rgba.insert(rgba.end(), {p.red, p.green, p.blue, p.alpha});
        }
    }
    return {std::move(rgba), static_cast<int>(image.width), static_cast<int>(image.height)};
}

/// Renders are read back as blue, green, red, alpha even into a picture of red, green, blue, alpha.
inline void readBack(const Texture& render, CxImage& image) {
    const std::uint8_t* p = render.bytes().data();
    for (int y = 0; y < render.height(); ++y) {
        for (int x = 0; x < render.width(); ++x, p += 4) {
            _tagMyRGBQUAD colour{p[2], p[1], p[0], p[3]};
            if (image.format == IMAGE_FORMAT_RGBA) std::swap(colour.red, colour.blue);
            image.SetPixelColor(x, y, colour);
        }
    }
}

/// True if one of the record's slots from `first` to `last` is other than zero, or no number.
inline bool anySlotSet(const _AdjustParam& p, std::size_t first, std::size_t last) {
    std::array<float, sizeof p / sizeof(float)> slots;
    std::memcpy(slots.data(), &p, sizeof p);
    for (std::size_t i = first; i <= last; ++i) {
        if (slots[i] != 0) return true;
    }
    return false;
}

inline bool runsAdjustment(const _AdjustParam& p) {
    return p.temperature != 11500 || anySlotSet(p, 1, 10);
}

inline bool runsRanges(const _AdjustParam& p) {
    for (std::size_t hue = 15; hue <= 50; hue += 5) {
        if (anySlotSet(p, hue, hue + 2)) return true;
    }
    return anySlotSet(p, 53, 53) || anySlotSet(p, 57, 57);
}

inline void adjust(CxImage& image, const _AdjustParam& p) {
    if (isRenderable(image) && runsAdjustment(p)) {
        const Texture picture = uploaded(image);
        readBack(picture.rendered([&](int x, int y) { return adjustment(p, picture.at(x, y)); }),
                 image);
    }
    clarity(&image, p.clarity);
    if (isRenderable(image) && runsRanges(p)) {
        const Texture picture = uploaded(image);
        readBack(picture.rendered([&](int x, int y) { return rangeProgram(p, picture, x, y); }),
                 image);
    }
    clarity(&image, p.clarity);
    sharpen(&image, p.sharpen);
    distortFilter(&image, p.distortion);
    fringingFilter(&image, p.fringing);
    dehaze(&image, p.dehaze);
    diffuse(&image, p.diffuse);
    deNoiseRGB(&image, p.colourNoiseReduction);
    deNoiseLumiance(&image, p.luminanceNoiseReduction);
}

}  // namespace keladjust::test::gpu

#endif
