#ifndef KELADJUST_FILTERS_VIGNETTE_VIGNETTE_H
#define KELADJUST_FILTERS_VIGNETTE_VIGNETTE_H

#include <vector>

#include "filters/vignette/VignettePixels.h"
#include "walks/PixelKernel.h"

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
    /// Where a row crosses the band in the picture's left half.
    struct BandRow {
        std::size_t firstMask = 0;  ///< place in masks_
        unsigned begin = 0;         ///< columns
        unsigned end = 0;
    };

    BandRow bandRow(unsigned distance) const;
    void fillMasks(const VignetteBand& band);

    bool active_;
    VignetteShade shade_{1.0f, 1.0f, 0.0f};
    unsigned centreX_ = 0;
    unsigned centreY_ = 0;
    // One number a column; see VignetteColumns.
    std::vector<float> distances_;
    std::vector<float> inner_;
    std::vector<float> outer_;
    // The same for rows by their distance from the middle one, on both sides alike.
    std::vector<float> innerOfRow_;
    std::vector<float> outerOfRow_;
    std::vector<BandRow> bandRows_;
    std::vector<float> masks_;
};

}  // namespace keladjust

#endif
