#ifndef KELADJUST_FILTERS_TEMPERATURE_TEMPERATURE_H
#define KELADJUST_FILTERS_TEMPERATURE_TEMPERATURE_H

#include "walks/ColourKernel.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// A colour to multiply by, channels as shares, and how much of the product counts.
struct ColourBlend {
    float red;
    float green;
    float blue;
    float strength;  ///< finite
};

/// Blends with the colour of a black body, then restores the lightness the pixel had.
class TemperatureKernel final : public PixelKernel, public ColourKernel {
public:
    /// The stage in the engine's program: its uniform, the slider value, and its function.
    static constexpr char program[] = R"glsl(
uniform int temperature;

const int neutralTemperature = 11500;

// Light of a black body, a fit over 1000..40000 kelvin.
vec3 blackBody(float kelvin) {
    float k = clamp(kelvin, 1000.0, 40000.0) / 100.0;
    float red = 1.0;
    float green;
    if (k <= 66.0) {
        green = 0.39008157876901960784 * log(k) - 0.63184144378862745098;
    } else {
        red = 1.29293618606274509804 * pow(k - 60.0, -0.1332047592);
        green = 1.12989086089529411765 * pow(k - 60.0, -0.0755148492);
    }
    float blue = 1.0;
    if (k <= 19.0) {
        blue = 0.0;
    } else if (k < 66.0) {
        blue = 0.54320678911019607843 * log(k - 10.0) - 1.19625408914;
    }
    return clampUnit(vec3(red, green, blue));
}

// Blends towards the light's colour, then gives the pixel its own lightness back.
vec3 withTemperature(vec3 colour) {
    int kelvin;
    if (temperature < neutralTemperature) {
        kelvin = 26000 - temperature;
    } else {
        kelvin = 23000 - temperature - 4900;
        if (kelvin < 1700) kelvin = 1700;
    }
    float ratio = abs(1.0 - float(kelvin) / float(neutralTemperature)) * 1.7;
    vec3 lit = clampUnit(colour * (1.0 - ratio) + (colour * blackBody(float(kelvin))) * ratio);
    vec3 hsl = hslOf(lit);
    return clampUnit(colourOfHsl(vec3(hsl.xy, lightness(colour))));
}
)glsl";

    explicit TemperatureKernel(long temperature);
    bool active() const override { return active_; }
    unsigned effort() const override { return 3; }
    void run(PackedSpan& span) const override;
    void change(ColourRun& run) const override;

private:
    bool active_;
    ColourBlend blend_;       ///< with the colour of pixels, in bytes
    ColourBlend exactBlend_;  ///< with that of tables
};

}  // namespace keladjust

#endif
