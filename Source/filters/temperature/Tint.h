#ifndef KELADJUST_FILTERS_TEMPERATURE_TINT_H
#define KELADJUST_FILTERS_TEMPERATURE_TINT_H

#include <cstdint>

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Shifts red and blue against green in proportion to the grey level.
class TintKernel final : public PixelKernel, public ColourKernel {
public:
    /// The stage in the engine's program: its uniform, the slider value, and its function.
    static constexpr char program[] = R"glsl(
uniform float tint;

// May leave 0..1: the next stage that clamps, or the picture written to, brings it back.
vec3 withTint(vec3 colour) {
    float grey = dot(colour, vec3(0.3, 0.59, 0.11));
    float shift = tint * 100.0 / 225.0 / 255.0 * grey;
    return colour + vec3(shift, -shift, shift);
}
)glsl";

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
