#ifndef KELADJUST_FILTERS_TEMPERATURE_TEMPERATURE_H
#define KELADJUST_FILTERS_TEMPERATURE_TEMPERATURE_H

#include <cstdint>

#include "filters/spans/Spans.h"
#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Blends with the colour of a black body, then restores the lightness the pixel had.
class TemperatureKernel final : public PixelKernel, public ColourKernel {
public:
    explicit TemperatureKernel(long temperature);
    bool active() const override { return active_; }
    unsigned effort() const override { return 3; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    /// Of any colour, inside 0..1 or not.
    Colour blended(Colour c) const;

    bool active_;
    spans::ColourBlend blend_;       ///< with the colour of pixels, in bytes
    spans::ColourBlend exactBlend_;  ///< with that of tables
};

}  // namespace keladjust

#endif
