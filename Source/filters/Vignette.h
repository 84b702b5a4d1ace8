#ifndef KELADJUST_FILTERS_VIGNETTE_H
#define KELADJUST_FILTERS_VIGNETTE_H

#include <vector>

#include "filters/PixelKernel.h"
#include "filters/spans/Spans.h"

namespace keladjust {

/// An ellipse about the middle of a picture: exposed inside, darkened or brightened outside, with a
/// raised-cosine band between.
class VignetteKernel final : public PixelKernel {
public:
    /// Settings in percent, for a picture of `width` x `height` pixels.
    VignetteKernel(unsigned width, unsigned height, float amount, float feather, float highlights,
                   float size, float roundness, float exposure);
    bool active() const override { return active_; }
    bool looksAtPlace() const override { return true; }
    void run(PackedSpan& span) const override;

private:
    bool active_;
    spans::VignetteShade shade_{1.0f, 1.0f, 0.0f};
    spans::VignetteBand band_{};
    float centreY_ = 0.0f;
    float innerHeight_ = 0.0f;  ///< vertical semi-axis of the inner ellipse
    // One number a column; see spans::VignetteColumns.
    std::vector<float> distances_;
    std::vector<float> inner_;
    std::vector<float> outer_;
};

}  // namespace keladjust

#endif
