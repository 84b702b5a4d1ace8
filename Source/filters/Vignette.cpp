// Vignette: a mask of 1 inside an ellipse and 0 outside a larger one; the exposure acts by the
// mask, the border's brightness and the protection of highlights by the rest.

#include "filters/Vignette.h"

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "ImageFormat/Geometry.h"
#include "filters/Rounding.h"
#include "filters/StageForms.h"

namespace keladjust {

namespace {

constexpr float pi = 3.1415927f;

// Taken in double and narrowed once, so that C libraries agree on them.
float exposureFactor(float exposure) {
    return static_cast<float>(std::pow(2.0, static_cast<double>(exposure / 100.0f)));
}
float cosine(float angle) {
    return static_cast<float>(std::cos(static_cast<double>(angle)));
}

float square(float value) {
    return value * value;
}

// The ellipse inside the band.
struct Ellipse {
    Ellipse(float centreX, float centreY, float size, float roundness)
        : width(centreX * 0.2f * (size * 4.0f + 1.0f)),
          height(centreY * 0.2f * (size * 4.0f + 1.0f)) {
        // Towards a circle; a negative roundness leaves the axes alone.
        const float shortening = std::fabs(width - height) * roundness;
        if (!(shortening >= 0.0f)) return;
        if (width > height) {
            width -= shortening;
        } else if (width < height) {
            height -= shortening;
        }
    }

    float width;  // semi-axes
    float height;
};

// A channel between border and inside.
float blend(float c, float mask, float outerFactor, float innerFactor) {
    const float border = (1.0f - (2.0f * mask - 1.0f)) * 0.5f;
    return outerFactor * c * border + mask * innerFactor * c;
}

float screen(float c, float lift) {
    return 255.0f - (255.0f - lift * c) * (255.0f - c) / 255.0f;
}

}  // namespace

VignetteKernel::VignetteKernel(unsigned width, unsigned height, float amount, float feather,
                               float highlights, float size, float roundness, float exposure)
    : active_(amount != 0.0f || exposure != 0.0f) {
    if (!active_) return;
    const float border = amount / 100.0f;
    outerFactor_ = border + 1.0f;
    innerFactor_ = exposureFactor(exposure);
    highlights_ = std::fabs(border) * (highlights / 100.0f * 2.0f - 1.0f);

    const auto centreX = static_cast<float>(width / 2);
    centreY_ = static_cast<float>(height / 2);
    const Ellipse inner(centreX, centreY_, size / 100.0f, roundness / 100.0f);
    innerHeight_ = inner.height;
    band_ = std::max(inner.width, inner.height) * 0.5f * (feather / 100.0f) + 3.0f;
    outerWidth_ = inner.width + band_;
    outerHeight_ = inner.height + band_;

    columns_.resize(width);
    for (unsigned x = 0; x < width; ++x) {
        const float dx = std::fabs(static_cast<float>(x) - centreX);
        columns_[x] = {dx, square(dx / inner.width), square(dx / outerWidth_)};
    }
    for (unsigned value = 0; value < inside_.size(); ++value) {
        inside_[value] =
            clampToByte(blend(static_cast<float>(value), 1.0f, outerFactor_, innerFactor_));
    }
}

void VignetteKernel::run(PixelSpan& span) const {
    float mask[PixelSpan::capacity];
    maskSpan(span, mask);
    for (std::size_t i = 0; i < span.count;) {
        const std::size_t begin = i;
        while (i < span.count && mask[i] == 1.0f) ++i;
        for (std::uint8_t* lane : {span.red, span.green, span.blue}) {
            for (std::size_t j = begin; j < i; ++j) lane[j] = inside_[lane[j]];
        }
        const std::size_t border = i;
        while (i < span.count && mask[i] != 1.0f) ++i;
        shade(span, border, i, mask);
    }
}

void VignetteKernel::maskSpan(const PixelSpan& span, float* mask) const {
    const float dy = std::fabs(static_cast<float>(span.y) - centreY_);
    const float inner = square(dy / innerHeight_);
    const float outer = square(dy / outerHeight_);
    const Column* const columns = columns_.data() + span.x;
    for (std::size_t i = 0; i < span.count; ++i) {
        if (columns[i].inner + inner - 1.0f <= 0.0f) {
            mask[i] = 1.0f;
        } else if (columns[i].outer + outer - 1.0f >= 0.0f) {
            mask[i] = 0.0f;
        } else {
            mask[i] = maskInBand(columns[i].distance, dy);
        }
    }
}

// A cosine of the way from the outer ellipse towards the centre, measured along the line through
// both.
float VignetteKernel::maskInBand(float dx, float dy) const {
    const float slope = square(dy / (dx + 0.000001f));
    const float x = 1.0f / (slope / square(outerHeight_) + 1.0f / square(outerWidth_));
    const float ellipse = std::sqrt(x * slope + x);
    const float distance = std::sqrt(square(dx) + square(dy));
    return (cosine((band_ - (ellipse - distance)) * pi / band_) + 1.0f) * 0.5f;
}

// Pixels whose mask is not 1. Not a number, from absurd settings, ends as black.
void VignetteKernel::shade(PixelSpan& span, std::size_t begin, std::size_t end,
                           const float* mask) const {
    for (std::size_t i = begin; i < end; ++i) {
        const float m = mask[i];
        const auto blended = [&](std::uint8_t c) {
            return blend(static_cast<float>(c), m, outerFactor_, innerFactor_);
        };
        const float red = blended(span.red[i]);
        const float green = blended(span.green[i]);
        const float blue = blended(span.blue[i]);
        const float lift =
            (1.0f - m) * (1.0f - m) * highlights_ * (1.0f - (red + green + blue) / 3.0f / 255.0f);
        span.red[i] = clampToByte(screen(red, lift));
        span.green[i] = clampToByte(screen(green, lift));
        span.blue[i] = clampToByte(screen(blue, lift));
    }
}

}  // namespace keladjust

CxImage* vignetteAdjustFilter(CxImage* image, float amount, float feather, float highlights,
                              float size, float roundness, float exposure) {
    return keladjust::exportedForm(image, [&] {
        if (!keladjust::hasPixels(image)) return;
        const keladjust::VignetteKernel kernel(image->width, image->height, amount, feather,
                                               highlights, size, roundness, exposure);
        if (!kernel.active()) return;
        const keladjust::PixelKernel* const kernels[] = {&kernel};
        keladjust::runKernels(*image, kernels);
    });
}
