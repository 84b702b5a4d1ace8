#ifndef KELADJUST_FILTERS_EXPOSURE_BRIGHTNESS_H
#define KELADJUST_FILTERS_EXPOSURE_BRIGHTNESS_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// A gain or an offset for every channel byte.
class BrightnessKernel final : public TableKernel, public ColourKernel {
public:
    /// The stage in the engine's program: its uniform, the slider value, and its function.
    static constexpr char program[] = R"glsl(
uniform float brightness;

vec3 withBrightness(vec3 colour) {
    float factor = brightness > 0.0 ? 1.0 + brightness / 100.0
                                    : (1.0 - 1.0 / (0.99 + brightness / 253.0)) * 0.6;
    return clampUnit(factor > 0.0 ? colour * factor : colour + factor);
}
)glsl";

    explicit BrightnessKernel(float brightness);
    bool active() const override { return active_; }
    void change(ColourRun& run) const override;

private:
    bool active_;
    float unitValue_;  ///< the gain, or the offset on the scale of tables
};

}  // namespace keladjust

#endif
