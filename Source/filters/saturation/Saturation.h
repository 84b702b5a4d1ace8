#ifndef KELADJUST_FILTERS_SATURATION_SATURATION_H
#define KELADJUST_FILTERS_SATURATION_SATURATION_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Moves the channels away from the pixel's lightness or towards it; greys stay exactly as they
/// are.
class SaturationKernel final : public PixelKernel, public ColourKernel {
public:
    explicit SaturationKernel(float saturation);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

}  // namespace keladjust

#endif
