#ifndef KELADJUST_FILTERS_SATURATION_SATURATION_H
#define KELADJUST_FILTERS_SATURATION_SATURATION_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Moves the channels away from the pixel's lightness or towards it; greys stay exactly as they
/// are.
class SaturationKernel final : public PixelKernel, public ColourKernel {
public:
    /// The stage in the engine's program: its uniform, the slider value, and its function.
    static constexpr char program[] = R"glsl(
uniform float sat;

// Pushes the channels away from the lightness, at most to full saturation, or pulls them to it.
vec3 withSaturation(vec3 colour) {
    float hi = largest(colour);
    float lo = smallest(colour);
    float delta = hi - lo;
    if (delta == 0.0) return colour;
    float sum = hi + lo;
    float light = sum * 0.5;
    float saturation = light < 0.5 ? delta / sum : delta / (2.0 - sum);
    float change = sat / 100.0;
    if (change >= 0.0) {
        float rest = saturation + change >= 1.0 ? saturation : 1.0 - change;
        colour += (colour - light) * (1.0 / rest - 1.0);
    } else {
        colour = light + (colour - light) * (1.0 + change);
    }
    return clampUnit(colour);
}
)glsl";

    explicit SaturationKernel(float saturation);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

}  // namespace keladjust

#endif
