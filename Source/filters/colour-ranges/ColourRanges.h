#ifndef KELADJUST_FILTERS_COLOUR_RANGES_COLOURRANGES_H
#define KELADJUST_FILTERS_COLOUR_RANGES_COLOURRANGES_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// The band of hues that a range works on, in degrees; a `minDegree` above `maxDegree` wraps
/// through 0.
struct HueBand {
    float minDegree;
    float maxDegree;

    bool wraps() const { return minDegree > maxDegree; }
};

/// What a range does, in the units of the formulas.
struct RangeChange {
    /// From slider values; positive hue shifts are a fifth stronger than negative ones.
    RangeChange(float hue, float saturation, float brightness)
        : shift(hue > 0.0f ? hue * 1.2f : hue),
          saturationRatio(saturation / 100.0f),
          lightnessRatio(brightness / 800.0f) {}

    /// How many of the three do something.
    unsigned steps() const {
        return (shift != 0.0f ? 1u : 0u) + (saturationRatio != 0.0f ? 1u : 0u) +
               (lightnessRatio != 0.0f ? 1u : 0u);
    }

    float shift;            ///< degrees
    float saturationRatio;  ///< added share of the saturation
    float lightnessRatio;   ///< added share of the lightness
};

/// Hue, saturation and lightness of one band of hues. Pixels of weight 0 change, too: every step is
/// a round trip through HSL that truncates, in tables only rounds.
class ColourRangeKernel final : public PixelKernel, public ColourKernel {
public:
    ColourRangeKernel(float minDegree, float maxDegree, float hue, float saturation,
                      float brightness);
    bool active() const override { return active_; }
    unsigned effort() const override { return 3 * change_.steps(); }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    HueBand band_;
    RangeChange change_;
};

}  // namespace keladjust

#endif
