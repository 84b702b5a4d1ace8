#ifndef KELADJUST_FILTERS_EXPOSURE_BRIGHTNESS_H
#define KELADJUST_FILTERS_EXPOSURE_BRIGHTNESS_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// A gain or an offset for every channel byte.
class BrightnessKernel final : public TableKernel, public ColourKernel {
public:
    explicit BrightnessKernel(float brightness);
    bool active() const override { return active_; }
    void change(ColourRun& run) const override;

private:
    bool active_;
    float unitValue_;  ///< the gain, or the offset on the scale of tables
};

}  // namespace keladjust

#endif
