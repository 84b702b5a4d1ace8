#ifndef KELADJUST_FILTERS_CONTRAST_CONTRAST_H
#define KELADJUST_FILTERS_CONTRAST_CONTRAST_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// The window whose inputs are mapped to the whole range; `Number` is int32_t for bytes and float
/// for tables, whose window is not rounded.
template <class Number>
struct ContrastWindow {
    Number low;
    Number high;
    Number range;
};

/// Stretches a window of the channel range over all of it, or squeezes the range.
class ContrastKernel final : public TableKernel, public ColourKernel {
public:
    /// The stage in the engine's program: its uniform, the slider value, and its function.
    static constexpr char program[] = R"glsl(
uniform float contrast;

// Between low and high a channel is stretched over the whole scale; below is black, above white.
float stretched(float channel, float low, float high, float span) {
    if (channel <= low) return 0.0;
    if (channel > high) return 1.0;
    return (channel - low) / span;
}

// The lower edge of the window, a whole level, as it is for bytes. At a contrast of 255 it would be
// infinite; any edge above the upper one leads to the same window.
int contrastEdge() {
    if (contrast == 255.0) return 255;
    float strength =
        contrast > 0.0 ? 1.0 / (1.0 - contrast / 255.0) - 1.0 : contrast / 255.0;
    return int(strength * 100.0 / 2.0);
}

vec3 withContrast(vec3 colour) {
    int low = contrastEdge();
    int high = 255 - low;
    if (high < low) {
        high = 127;
        low = 120;
    }
    if (low < -127) low = -120;
    int span = low >= 0 ? 255 - 2 * low : 255 + 2 * low;

    float a = float(low) / 255.0;
    float h = float(high) / 255.0;
    float s = float(span) / 255.0;
    if (a > 0.0) {
        colour = vec3(stretched(colour.r, a, h, s), stretched(colour.g, a, h, s),
                      stretched(colour.b, a, h, s));
    } else {
        colour = colour * s - a;
    }
    return clampUnit(colour);
}
)glsl";

    explicit ContrastKernel(float contrast);
    bool active() const override { return active_; }
    void change(ColourRun& run) const override;

private:
    bool active_;
    ContrastWindow<float> unitWindow_;
};

}  // namespace keladjust

#endif
