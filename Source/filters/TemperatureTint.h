#ifndef KELADJUST_FILTERS_TEMPERATURETINT_H
#define KELADJUST_FILTERS_TEMPERATURETINT_H

#include <cstdint>

#include "filters/PixelKernel.h"
#include "filters/spans/Spans.h"

namespace keladjust {

/// Blends with the colour of a black body, then restores the lightness the pixel had.
class TemperatureKernel final : public PixelKernel {
public:
    explicit TemperatureKernel(long temperature);
    bool active() const override { return active_; }
    unsigned effort() const override { return 3; }
    void run(PackedSpan& span) const override;

private:
    bool active_;
    spans::ColourBlend blend_;
};

/// Shifts red and blue against green in proportion to the grey level.
class TintKernel final : public PixelKernel {
public:
    explicit TintKernel(float tint);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;

private:
    bool active_;
    std::int32_t strength_;  // in 256ths
};

}  // namespace keladjust

#endif
