// Vignette: a mask of 1 inside an ellipse and 0 outside a larger one; the exposure acts by the
// mask, the border's brightness and the protection of highlights by the rest.

#include "filters/vignette/Vignette.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "platform/Parallel.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

// Taken in double and narrowed once, so that C libraries agree on it.
float borderFactor(float exposure) {
    return static_cast<float>(std::pow(2.0, static_cast<double>(exposure / 100.0f)));
}

constexpr std::size_t longestVector = 64;  // floats that may be read behind the last one

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
    : active_(amount != 0.0f || exposure != 0.0f), centreX_(width / 2), centreY_(height / 2) {
    if (!active_) return;
    const float border = amount / 100.0f;
    shade_ = {border + 1.0f, borderFactor(exposure),
              std::fabs(border) * (highlights / 100.0f * 2.0f - 1.0f)};

    const Ellipse inner(static_cast<float>(centreX_), static_cast<float>(centreY_), size / 100.0f,
                        roundness / 100.0f);
    VignetteBand band{};
    band.width = std::max(inner.width, inner.height) * 0.5f * (feather / 100.0f) + 3.0f;
    band.outerWidth = inner.width + band.width;
    band.outerHeight = inner.height + band.width;

    for (std::vector<float>* columns : {&distances_, &inner_, &outer_}) {
        columns->resize(std::size_t{width} + longestVector);
    }
    // Columns behind the last one go on in the same way, so that a vector that reaches beyond the
    // picture meets no band that its pixels do not meet.
    for (std::size_t x = 0; x < distances_.size(); ++x) {
        const float dx = std::fabs(static_cast<float>(x) - static_cast<float>(centreX_));
        distances_[x] = dx;
        inner_[x] = square(dx / inner.width);
        outer_[x] = square(dx / band.outerWidth);
    }
    for (unsigned distance = 0; distance <= centreY_; ++distance) {
        const auto dy = static_cast<float>(distance);
        innerOfRow_.push_back(square(dy / inner.height));
        outerOfRow_.push_back(square(dy / band.outerHeight));
    }
    fillMasks(band);
}

// The band lies between the columns that are outside and those that are inside: towards the centre
// neither test, rounding included, turns back.
VignetteKernel::BandRow VignetteKernel::bandRow(unsigned distance) const {
    const auto beginOfRest = [&](const auto& isBefore) {
        unsigned begin = 0;
        for (unsigned count = centreX_ + 1; count > 0;) {
            const unsigned half = count / 2;
            if (isBefore(begin + half)) {
                begin += half + 1;
                count -= half + 1;
            } else {
                count = half;
            }
        }
        return begin;
    };
    BandRow row;
    row.begin =
        beginOfRest([&](unsigned x) { return outer_[x] + outerOfRow_[distance] - 1.0f >= 0.0f; });
    row.end = beginOfRest(
        [&](unsigned x) { return !(inner_[x] + innerOfRow_[distance] - 1.0f <= 0.0f); });
    row.end = std::max(row.begin, row.end);
    return row;
}

// A quarter of the picture has all masks there are.
void VignetteKernel::fillMasks(const VignetteBand& band) {
    std::size_t size = longestVector;
    for (unsigned distance = 0; distance <= centreY_; ++distance) {
        BandRow& row = bandRows_.emplace_back(bandRow(distance));
        row.firstMask = size;
        size += row.end - row.begin;
    }
    masks_.resize(size + longestVector);
    constexpr std::size_t masksPerThread = 1 << 13;
    platform::parallelBands(bandRows_.size(), platform::bandCount(size, masksPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                for (std::size_t distance = begin; distance < end; ++distance) {
                                    const BandRow& row = bandRows_[distance];
                                    vignetteMasks(band, distances_.data() + row.begin,
                                                  static_cast<float>(distance), row.end - row.begin,
                                                  masks_.data() + row.firstMask);
                                }
                            });
}

void VignetteKernel::run(PackedSpan& span) const {
    const unsigned distance = span.y > centreY_ ? span.y - centreY_ : centreY_ - span.y;
    const BandRow& band = bandRows_[distance];
    const auto fromSpan = [&](unsigned column) {
        return static_cast<std::ptrdiff_t>(column) - static_cast<std::ptrdiff_t>(span.x);
    };
    const VignetteRow row{{inner_.data() + span.x, outer_.data() + span.x},
                          innerOfRow_[distance],
                          outerOfRow_[distance],
                          masks_.data() + band.firstMask,
                          fromSpan(band.begin),
                          fromSpan(centreX_)};
    applyVignette(span, row, shade_);
}

}  // namespace keladjust

CxImage* vignetteAdjustFilter(CxImage* image, float amount, float feather, float highlights,
                              float size, float roundness, float exposure) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        const keladjust::VignetteKernel kernel(static_cast<unsigned>(picture.width),
                                               static_cast<unsigned>(picture.height), amount,
                                               feather, highlights, size, roundness, exposure);
        if (!kernel.active()) return;
        const keladjust::PixelKernel* const kernels[] = {&kernel};
        keladjust::runKernels(picture, kernels);
    });
}
