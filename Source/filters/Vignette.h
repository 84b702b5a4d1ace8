#ifndef KELADJUST_FILTERS_VIGNETTE_H
#define KELADJUST_FILTERS_VIGNETTE_H

#include <vector>

#include "filters/PixelKernel.h"

namespace keladjust {

/// An ellipse about the middle of a picture: exposed inside, darkened or brightened outside, with a
/// raised-cosine band between.
class VignetteKernel final : public PixelKernel {
public:
    /// Settings in percent, for a picture of `width` x `height` pixels.
    VignetteKernel(unsigned width, unsigned height, float amount, float feather, float highlights,
                   float size, float roundness, float exposure);
    bool active() const override { return active_; }
    void run(PixelSpan& span) const override;

private:
    /// What a column adds to every test of its pixels.
    struct Column {
        float distance;  ///< from the centre
        float inner;     ///< squared, in semi-axes of the inner ellipse
        float outer;     ///< squared, in semi-axes of the outer ellipse
    };

    void maskSpan(const PixelSpan& span, float* mask) const;
    float maskInBand(float dx, float dy) const;
    void shade(PixelSpan& span, std::size_t begin, std::size_t end, const float* mask) const;

    bool active_;
    float outerFactor_ = 1.0f;
    float innerFactor_ = 1.0f;
    float highlights_ = 0.0f;
    float centreY_ = 0.0f;
    float innerHeight_ = 0.0f;  ///< vertical semi-axis of the inner ellipse
    float band_ = 0.0f;         ///< width of the band between the ellipses, in pixels
    float outerWidth_ = 0.0f;   ///< semi-axes of the outer ellipse
    float outerHeight_ = 0.0f;
    std::vector<Column> columns_;
    ByteTable inside_{};  ///< of a pixel where the mask is 1
};

}  // namespace keladjust

#endif
