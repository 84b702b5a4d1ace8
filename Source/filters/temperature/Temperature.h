#ifndef KELADJUST_FILTERS_TEMPERATURE_TEMPERATURE_H
#define KELADJUST_FILTERS_TEMPERATURE_TEMPERATURE_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// A colour to multiply by, channels as shares, and how much of the product counts.
struct ColourBlend {
    float red;
    float green;
    float blue;
    float strength;  ///< finite
};

/// Blends with the colour of a black body, then restores the lightness the pixel had.
class TemperatureKernel final : public PixelKernel, public ColourKernel {
public:
    explicit TemperatureKernel(long temperature);
    bool active() const override { return active_; }
    unsigned effort() const override { return 3; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    ColourBlend blend_;       ///< with the colour of pixels, in bytes
    ColourBlend exactBlend_;  ///< with that of tables
};

}  // namespace keladjust

#endif
