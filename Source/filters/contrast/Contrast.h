#ifndef KELADJUST_FILTERS_CONTRAST_CONTRAST_H
#define KELADJUST_FILTERS_CONTRAST_CONTRAST_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// The window whose inputs are mapped to the whole range; `Number` is int32_t for bytes and float
/// for tables, whose window is not rounded.
template <class Number>
struct ContrastWindow {
    Number low;
    Number high;
    Number range;
};

/// Stretches a window of the channel range over all of it, or squeezes the range.
class ContrastKernel final : public TableKernel, public ColourKernel {
public:
    explicit ContrastKernel(float contrast);
    bool active() const override { return active_; }
    void change(ColourRun& run) const override;

private:
    bool active_;
    ContrastWindow<float> unitWindow_;
};

}  // namespace keladjust

#endif
