#ifndef KELADJUST_FILTERS_TONAL_TONALRANGES_H
#define KELADJUST_FILTERS_TONAL_TONALRANGES_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// The four stages in the engine's program: their uniforms, the slider values, and their functions.
inline constexpr char tonalProgram[] = R"glsl(
uniform float highLight;
uniform float shadow;
uniform float whiteLevel;
uniform float blackLevel;

// Towards white when k is positive, away from it when negative; black and white stay.
vec3 lifted(vec3 colour, float k) {
    return 1.0 - (1.0 - k * colour) * (1.0 - colour);
}

vec3 withHighlights(vec3 colour) {
    return clampUnit(lifted(colour, largest(colour) * (highLight / 100.0)));
}

// Brightening counts four times as much as darkening.
vec3 withShadows(vec3 colour) {
    float amount = shadow / 100.0 * (shadow > 0.0 ? 2.0 : 0.5);
    return clampUnit(lifted(colour, (1.0 - largest(colour)) * amount));
}

// Brightening is done twice.
vec3 withWhites(vec3 colour) {
    float k = largest(colour) * (whiteLevel / 100.0);
    colour = lifted(colour, k);
    if (k > 0.0) colour = lifted(colour, k);
    return clampUnit(colour);
}

// Darkening counts four times as much as brightening.
vec3 withBlacks(vec3 colour) {
    float amount = blackLevel / 100.0 * (blackLevel > 0.0 ? 0.5 : 2.0);
    return clampUnit(lifted(colour, (1.0 - largest(colour)) * amount));
}
)glsl";

/// Lifts by a coefficient that grows with the pixel's largest channel.
class HighlightKernel final : public PixelKernel, public ColourKernel {
public:
    static constexpr auto& program = tonalProgram;
    explicit HighlightKernel(float highlight);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

/// Lifts by a coefficient that falls with the pixel's largest channel; positive settings act four
/// times as strongly as negative ones.
class ShadowKernel final : public PixelKernel, public ColourKernel {
public:
    static constexpr auto& program = tonalProgram;
    explicit ShadowKernel(float shadow);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

/// As highlights, but a positive lift is done twice, and results are clamped.
class WhiteLevelKernel final : public PixelKernel, public ColourKernel {
public:
    static constexpr auto& program = tonalProgram;
    explicit WhiteLevelKernel(float level);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

/// As shadows with the strengths the other way round, and clamped.
class BlackLevelKernel final : public PixelKernel, public ColourKernel {
public:
    static constexpr auto& program = tonalProgram;
    explicit BlackLevelKernel(float level);
    bool active() const override { return active_; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    float amount_;
};

}  // namespace keladjust

#endif
