#ifndef KELADJUST_IMAGEFORMAT_COLOURCONVERSION_H
#define KELADJUST_IMAGEFORMAT_COLOURCONVERSION_H

#include <keladjust/keladjust.h>

#include <algorithm>

namespace keladjust {

/// The sixth of the hue circle (42 of 255) that a channel's distance from the largest stands for.
inline int hueShare(int largest, int channel, int delta) {
    return ((largest - channel) * 42 + delta / 2) / delta;
}

/// CxImage::RGBtoHSL().
inline _tagMyRGBQUAD rgbToHsl(_tagMyRGBQUAD rgb) {
    const int red = rgb.red;
    const int green = rgb.green;
    const int blue = rgb.blue;
    const int largest = std::max({red, green, blue});
    const int smallest = std::min({red, green, blue});
    const int sum = largest + smallest;
    const int delta = largest - smallest;
    const int lightness = ((sum + 1) * 255) / 510;

    if (delta == 0) return {static_cast<unsigned char>(lightness), 0, 170, 0};

    const int saturation = lightness <= 127 ? (delta * 255 + sum / 2) / sum
                                            : (delta * 255 + (510 - sum) / 2) / (510 - sum);
    const int redShare = hueShare(largest, red, delta);
    const int greenShare = hueShare(largest, green, delta);
    const int blueShare = hueShare(largest, blue, delta);
    int hue;
    if (red == largest) {
        hue = blueShare - greenShare;
    } else if (green == largest) {
        hue = 85 + redShare - blueShare;
    } else {
        hue = 170 + greenShare - redShare;
    }
    // The narrowing wraps a negative hue of the red sector to the top of the circle.
    return {static_cast<unsigned char>(lightness), static_cast<unsigned char>(saturation),
            static_cast<unsigned char>(hue), 0};
}

/// CxImage::HueToRGB().
inline float hueToChannel(float m1, float m2, float hue) {
    if (hue > 360.0f) {
        hue = hue - 360.0f;
    } else if (hue < 0.0f) {
        hue = hue + 360.0f;
    }
    if (hue < 60.0f) return m1 + (m2 - m1) * hue / 60.0f;
    if (hue < 180.0f) return m2;
    if (hue < 240.0f) return m1 + (m2 - m1) * (240.0f - hue) / 60.0f;
    return m1;
}

/// CxImage::HSLtoRGB(). Single precision in just this order: the results show every rounding.
inline _tagMyRGBQUAD hslToRgb(_tagMyRGBQUAD hsl) {
    const float hue = static_cast<float>(hsl.red) * 360.0f / 255.0f;
    const float saturation = static_cast<float>(hsl.green) / 255.0f;
    const float lightness = static_cast<float>(hsl.blue) / 255.0f;

    if (saturation == 0.0f) {
        const auto grey = static_cast<unsigned char>(lightness * 255.0f);
        return {grey, grey, grey, 0};
    }
    const float m2 = lightness <= 0.5f ? lightness * (1.0f + saturation)
                                       : lightness + saturation - lightness * saturation;
    const float m1 = 2.0f * lightness - m2;
    const auto channel = [m1, m2](float channelHue) {
        return static_cast<unsigned char>(
            static_cast<int>(hueToChannel(m1, m2, channelHue) * 255.0f));
    };
    return {channel(hue - 120.0f), channel(hue), channel(hue + 120.0f), 0};
}

}  // namespace keladjust

#endif
