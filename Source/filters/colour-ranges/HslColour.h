#ifndef KELADJUST_FILTERS_COLOUR_RANGES_HSLCOLOUR_H
#define KELADJUST_FILTERS_COLOUR_RANGES_HSLCOLOUR_H

#include <algorithm>

#include "walks/ColourKernel.h"

namespace keladjust {

/// `map` for each of the three channels.
template <class Map>
Colour mapChannels(Colour c, Map map) {
    return {map(c.red), map(c.green), map(c.blue)};
}

inline float largestOf(Colour c) {
    return std::max({c.red, c.green, c.blue});
}
inline float smallestOf(Colour c) {
    return std::min({c.red, c.green, c.blue});
}

/// Hue, saturation and lightness in single precision (A. R. Smith, "Color Gamut Transform Pairs",
/// 1978, in its bi-hexcone form).
struct HslColour {
    float hue;         ///< degrees, 0..360
    float saturation;  ///< 0..1
    float lightness;   ///< 0..1
};

inline HslColour toHsl(Colour c) {
    const float largest = largestOf(c);
    const float smallest = smallestOf(c);
    if (largest == smallest) return {0.6666667f * 360.0f, 0.0f, c.red};

    const float delta = largest - smallest;
    const float lightness = (largest + smallest) * 0.5f;
    const float saturation =
        lightness < 0.5f ? delta / (largest + smallest) : delta / (2.0f - largest - smallest);
    float sixths;
    if (c.red == largest) {
        sixths = (c.green - c.blue) / delta;
    } else if (c.green == largest) {
        sixths = 2.0f + (c.blue - c.red) / delta;
    } else {
        sixths = 4.0f + (c.red - c.green) / delta;
    }
    float turn = sixths / 6.0f;
    if (turn < 0.0f) turn = turn + 1.0f;
    return {turn * 360.0f, saturation, lightness};
}

/// One channel at `turn` (0..1 of the circle) between the bounds `p` and `q`.
inline float channelAt(float turn, float p, float q) {
    if (turn < 0.16666667f) return p + (q - p) * 6.0f * turn;
    if (turn < 0.5f) return q;
    if (turn < 0.6666667f) return p + (q - p) * (0.6666667f - turn) * 6.0f;
    return p;
}

inline Colour toRgb(HslColour hsl) {
    const float saturation = hsl.saturation;
    const float lightness = hsl.lightness;
    if (saturation == 0.0f) return {lightness, lightness, lightness};

    const float turn = hsl.hue / 360.0f;
    const float q = lightness < 0.5f ? lightness * (1.0f + saturation)
                                     : lightness + saturation - lightness * saturation;
    const float p = 2.0f * lightness - q;
    float redTurn = turn + 0.33333334f;
    if (redTurn > 1.0f) redTurn = redTurn - 1.0f;
    float blueTurn = turn - 0.33333334f;
    if (blueTurn < 0.0f) blueTurn = blueTurn + 1.0f;
    return {channelAt(redTurn, p, q), channelAt(turn, p, q), channelAt(blueTurn, p, q)};
}

}  // namespace keladjust

#endif
