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
    /// The stage in the engine's program: a function for any of the ranges.
    static constexpr char program[] = R"glsl(
// How much a hue belongs to a band: falling from 1 in its middle, or at 0 degrees if it wraps, to 0
// at both bounds.
float weightOf(float hue, float minDegree, float maxDegree) {
    if (minDegree > maxDegree) {
        if (hue >= minDegree) return (hue - minDegree) / (360.0 - minDegree);
        if (hue > maxDegree) return 0.0;
        return maxDegree == 0.0 ? 1.0 : 1.0 - hue / maxDegree;
    }
    if (hue <= minDegree || hue >= maxDegree) return 0.0;
    float rise = (hue - minDegree) * 2.0 / (maxDegree - minDegree);
    return rise <= 1.0 ? rise : 2.0 - rise;
}

vec3 mixedIn(vec3 colour, vec3 changedHsl, float weight) {
    return clampUnit(colour * (1.0 - weight) + colourOfHsl(changedHsl) * weight);
}

// The weight comes from the incoming hue alone: a shifted hue stays in its band. Brightness counts
// one eighth.
vec3 withRange(vec3 colour, float minDegree, float maxDegree, float hueShift, float saturation,
               float brightnessChange) {
    if (hueShift == 0.0 && saturation == 0.0 && brightnessChange == 0.0) return colour;
    vec3 hsl = hslOf(colour);
    float weight = weightOf(hsl.x * 360.0, minDegree, maxDegree);
    if (hueShift != 0.0) {
        hsl.x += (hueShift > 0.0 ? hueShift * 1.2 : hueShift) / 360.0;
        if (hsl.x < 0.0) {
            hsl.x += 1.0;
        } else if (hsl.x > 1.0) {
            hsl.x -= 1.0;
        }
        colour = mixedIn(colour, hsl, weight);
    }
    if (saturation != 0.0) {
        hsl = hslOf(colour);
        hsl.y = clamp(hsl.y * (1.0 + saturation / 100.0), 0.0, 1.0);
        colour = mixedIn(colour, hsl, weight);
    }
    if (brightnessChange != 0.0) {
        hsl = hslOf(colour);
        hsl.z = clamp(hsl.z * (1.0 + brightnessChange / 100.0 / 8.0), 0.0, 1.0);
        colour = mixedIn(colour, hsl, weight);
    }
    return colour;
}
)glsl";

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
