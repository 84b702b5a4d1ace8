#ifndef KELADJUST_FILTERS_VIGNETTE_VIGNETTE_H
#define KELADJUST_FILTERS_VIGNETTE_VIGNETTE_H

#include <vector>

#include "filters/vignette/VignettePixels.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// An ellipse about the middle of a picture: exposed inside, darkened or brightened outside, with a
/// raised-cosine band between.
class VignetteKernel final : public PixelKernel {
public:
    /// The stage in the engine's program: its uniforms but for the exposure, which has a name of
    /// its own in each program, and its function.
    static constexpr char program[] = R"glsl(
// An ellipse about the middle of the picture, all in percent.
uniform float amount;
uniform float feather;
uniform float highlights;
uniform float size;
uniform float roundness;

// 1 inside the inner ellipse, 0 outside the outer one, a raised cosine in the band between.
float vignetteMask() {
    // Whole pixels: the centre of an odd size lies half a pixel up and left of the true one.
    vec2 centre = vec2(float(imageWidth / 2), float(imageHeight / 2));
    vec2 position = vec2(textureCoord.x * float(imageWidth), textureCoord.y * float(imageHeight));

    vec2 inner = 0.2 * centre * (1.0 + 4.0 * (size / 100.0));
    float difference = abs(inner.x - inner.y) * (roundness / 100.0);
    if (difference >= 0.0) {
        if (inner.x > inner.y) {
            inner.x -= difference;
        } else if (inner.x < inner.y) {
            inner.y -= difference;
        }
    }
    float band = feather / 100.0 * (max(inner.x, inner.y) / 2.0) + 3.0;
    vec2 outer = inner + band;

    vec2 d = abs(position - centre);
    vec2 onInner = d / inner;
    if (dot(onInner, onInner) - 1.0 <= 0.0) return 1.0;
    vec2 onOuter = d / outer;
    if (dot(onOuter, onOuter) - 1.0 >= 0.0) return 0.0;

    // How far out the outer ellipse lies in the direction of this pixel.
    float slope = d.y / (d.x + 0.000001);
    float q = slope * slope;
    float xx = 1.0 / (q / (outer.y * outer.y) + 1.0 / (outer.x * outer.x));
    float yy = q * xx;
    float depth = band - (sqrt(xx + yy) - length(d));
    return 0.5 * (1.0 + cos(depth * 3.14159265358979323846 / band));
}

// Exposes the inside by a power of two, scales the outside by the amount, and lifts bright pixels
// of the outside back, or lowers them when the highlights are below 50.
vec3 withVignette(vec3 colour, float innerExposure) {
    float change = amount / 100.0;
    float protection = (2.0 * (highlights / 100.0) - 1.0) * abs(change);
    float gain = exp2(innerExposure / 100.0);
    float mask = vignetteMask();

    vec3 outside = (1.0 + change) * colour;
    colour = colour * (mask * gain) + outside * (0.5 * (1.0 - (2.0 * mask - 1.0)));
    if (mask < 1.0) {
        float mean = (colour.r + colour.g + colour.b) / 3.0;
        float lift = (1.0 - mask) * (1.0 - mask) * protection * (1.0 - mean);
        colour = 1.0 - (1.0 - lift * colour) * (1.0 - colour);
    }
    return clampUnit(colour);
}
)glsl";

    /// Settings in percent, for a picture of `width` x `height` pixels.
    VignetteKernel(unsigned width, unsigned height, float amount, float feather, float highlights,
                   float size, float roundness, float exposure);
    bool active() const override { return active_; }
    bool looksAtPlace() const override { return true; }
    void run(PackedSpan& span) const override;

private:
    /// Where a row crosses the band in the picture's left half.
    struct BandRow {
        std::size_t firstMask = 0;  ///< place in masks_
        unsigned begin = 0;         ///< columns
        unsigned end = 0;
    };

    BandRow bandRow(unsigned distance) const;
    void fillMasks(const VignetteBand& band);

    bool active_;
    VignetteShade shade_{1.0f, 1.0f, 0.0f};
    unsigned centreX_ = 0;
    unsigned centreY_ = 0;
    // One number a column; see VignetteColumns.
    std::vector<float> distances_;
    std::vector<float> inner_;
    std::vector<float> outer_;
    // The same for rows by their distance from the middle one, on both sides alike.
    std::vector<float> innerOfRow_;
    std::vector<float> outerOfRow_;
    std::vector<BandRow> bandRows_;
    std::vector<float> masks_;
};

}  // namespace keladjust

#endif
