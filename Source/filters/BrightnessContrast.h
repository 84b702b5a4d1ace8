#ifndef KELADJUST_FILTERS_BRIGHTNESSCONTRAST_H
#define KELADJUST_FILTERS_BRIGHTNESSCONTRAST_H

#include "filters/PixelKernel.h"

namespace keladjust {

/// A gain or an offset for every channel byte.
class BrightnessKernel final : public TableKernel {
public:
    explicit BrightnessKernel(float brightness);
    bool active() const override { return active_; }

private:
    bool active_;
};

/// Stretches a window of the channel range over all of it, or squeezes the range.
class ContrastKernel final : public TableKernel {
public:
    explicit ContrastKernel(float contrast);
    bool active() const override { return active_; }

private:
    bool active_;
};

}  // namespace keladjust

#endif
