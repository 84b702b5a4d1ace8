#ifndef KELADJUST_FILTERS_EXPOSURE_EXPOSURE_H
#define KELADJUST_FILTERS_EXPOSURE_EXPOSURE_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Every channel times 2^(exposure / 50 * 0.6).
class ExposureKernel final : public TableKernel, public ColourKernel {
public:
    explicit ExposureKernel(float exposure);
    bool active() const override { return active_; }
    void change(ColourRun& run) const override;

private:
    bool active_;
    float factor_;
};

}  // namespace keladjust

#endif
