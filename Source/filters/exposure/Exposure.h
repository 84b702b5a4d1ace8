#ifndef KELADJUST_FILTERS_EXPOSURE_EXPOSURE_H
#define KELADJUST_FILTERS_EXPOSURE_EXPOSURE_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Every channel times 2^(exposure / 50 * 0.6).
class ExposureKernel final : public TableKernel, public ColourKernel {
public:
    /// The stage in the engine's program: its uniform, the slider value, and its function.
    static constexpr char program[] = R"glsl(
uniform float exposure;

vec3 withExposure(vec3 colour) {
    return clampUnit(colour * exp2(exposure / 50.0 * 0.6));
}
)glsl";

    explicit ExposureKernel(float exposure);
    bool active() const override { return active_; }
    void change(ColourRun& run) const override;

private:
    bool active_;
    float factor_;
};

}  // namespace keladjust

#endif
