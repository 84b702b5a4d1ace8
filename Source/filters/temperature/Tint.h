#ifndef KELADJUST_FILTERS_TEMPERATURE_TINT_H
#define KELADJUST_FILTERS_TEMPERATURE_TINT_H

#include <cstdint>

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Shifts red and blue against green in proportion to the grey level.
class TintKernel final : public PixelKernel, public ColourKernel {
public:
    explicit TintKernel(float tint);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    std::int32_t strength_;  // in 256ths
};

}  // namespace keladjust

#endif
