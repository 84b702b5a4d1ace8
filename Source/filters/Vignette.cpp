// Vignette: a mask of 1 inside an ellipse and 0 outside a larger one; the exposure acts by the
// mask, the border's brightness and the protection of highlights by the rest.

#include "filters/Vignette.h"

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "ImageFormat/Geometry.h"
#include "filters/StageForms.h"

namespace keladjust {

namespace {

// Taken in double and narrowed once, so that C libraries agree on it.
float exposureFactor(float exposure) {
    return static_cast<float>(std::pow(2.0, static_cast<double>(exposure / 100.0f)));
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

}  // namespace

VignetteKernel::VignetteKernel(unsigned width, unsigned height, float amount, float feather,
                               float highlights, float size, float roundness, float exposure)
    : active_(amount != 0.0f || exposure != 0.0f) {
    if (!active_) return;
    const float border = amount / 100.0f;
    shade_ = {border + 1.0f, exposureFactor(exposure),
              std::fabs(border) * (highlights / 100.0f * 2.0f - 1.0f)};

    const auto centreX = static_cast<float>(width / 2);
    centreY_ = static_cast<float>(height / 2);
    const Ellipse inner(centreX, centreY_, size / 100.0f, roundness / 100.0f);
    innerHeight_ = inner.height;
    band_.width = std::max(inner.width, inner.height) * 0.5f * (feather / 100.0f) + 3.0f;
    band_.outerWidth = inner.width + band_.width;
    band_.outerHeight = inner.height + band_.width;

    constexpr std::size_t longestVector = 64;  // floats that may be read behind the last column
    for (std::vector<float>* columns : {&distances_, &inner_, &outer_}) {
        columns->resize(width + longestVector);
    }
    for (unsigned x = 0; x < width; ++x) {
        const float dx = std::fabs(static_cast<float>(x) - centreX);
        distances_[x] = dx;
        inner_[x] = square(dx / inner.width);
        outer_[x] = square(dx / band_.outerWidth);
    }
}

void VignetteKernel::run(PackedSpan& span) const {
    const float dy = std::fabs(static_cast<float>(span.y) - centreY_);
    const spans::VignetteRow row{
        {distances_.data() + span.x, inner_.data() + span.x, outer_.data() + span.x},
        dy,
        square(dy / innerHeight_),
        square(dy / band_.outerHeight)};
    spans::applyVignette(span, row, band_, shade_);
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
