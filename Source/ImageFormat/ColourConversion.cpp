#include "ImageFormat/ColourConversion.h"

#include <keladjust/CxImage.h>

#include "platform/FloatingPoint.h"

_tagMyRGBQUAD CxImage::RGBtoHSL(_tagMyRGBQUAD rgb) {
    return keladjust::rgbToHsl(rgb);
}

_tagMyRGBQUAD CxImage::HSLtoRGB(_tagMyRGBQUAD hsl) {
    const keladjust::platform::DefaultFloatingPoint scope;
    return keladjust::hslToRgb(hsl);
}

float CxImage::HueToRGB(float m1, float m2, float hue) {
    const keladjust::platform::DefaultFloatingPoint scope;
    return keladjust::hueToChannel(m1, m2, hue);
}
