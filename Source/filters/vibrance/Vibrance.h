#ifndef KELADJUST_FILTERS_VIBRANCE_VIBRANCE_H
#define KELADJUST_FILTERS_VIBRANCE_VIBRANCE_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Saturation in inverse proportion to how saturated a pixel is already.
class VibranceKernel final : public PixelKernel, public ColourKernel {
public:
    /// The stage in the engine's program: its uniform, the slider value, and its function.
    static constexpr char program[] = R"glsl(
uniform float vib;

// The duller the pixel, the smaller the mask and the stronger the effect.
vec3 withVibrance(vec3 colour) {
    float luma = lightness(colour);
    vec3 mask = clampUnit(colour - luma);
    float ratio = 1.0 + vib / 100.0 * 0.8 * (1.0 - lightness(mask));
    return clampUnit(colour * ratio + luma * (1.0 - ratio));
}
)glsl";

    explicit VibranceKernel(float vibrance);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

}  // namespace keladjust

#endif
