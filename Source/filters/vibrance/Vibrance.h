#ifndef KELADJUST_FILTERS_VIBRANCE_VIBRANCE_H
#define KELADJUST_FILTERS_VIBRANCE_VIBRANCE_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Saturation in inverse proportion to how saturated a pixel is already.
class VibranceKernel final : public PixelKernel, public ColourKernel {
public:
    explicit VibranceKernel(float vibrance);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

}  // namespace keladjust

#endif
