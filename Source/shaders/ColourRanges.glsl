// Eight bands of hues. Bounds are degrees, a band whose lower bound is the larger wraps through 0;
// hue is a shift in degrees, saturation and brightness are percent.
uniform float Red_degreeMinVal;
uniform float Red_degreeMaxVal;
uniform float Red_hueVal;
uniform float Red_satVal;
uniform float Red_brightnessVal;
uniform float Orange_degreeMinVal;
uniform float Orange_degreeMaxVal;
uniform float Orange_hueVal;
uniform float Orange_satVal;
uniform float Orange_brightnessVal;
uniform float Yellow_degreeMinVal;
uniform float Yellow_degreeMaxVal;
uniform float Yellow_hueVal;
uniform float Yellow_satVal;
uniform float Yellow_brightnessVal;
uniform float Green_degreeMinVal;
uniform float Green_degreeMaxVal;
uniform float Green_hueVal;
uniform float Green_satVal;
uniform float Green_brightnessVal;
uniform float Magenta_degreeMinVal;
uniform float Magenta_degreeMaxVal;
uniform float Magenta_hueVal;
uniform float Magenta_satVal;
uniform float Magenta_brightnessVal;
uniform float Purple_degreeMinVal;
uniform float Purple_degreeMaxVal;
uniform float Purple_hueVal;
uniform float Purple_satVal;
uniform float Purple_brightnessVal;
uniform float Blue_degreeMinVal;
uniform float Blue_degreeMaxVal;
uniform float Blue_hueVal;
uniform float Blue_satVal;
uniform float Blue_brightnessVal;
uniform float Aqua_degreeMinVal;
uniform float Aqua_degreeMaxVal;
uniform float Aqua_hueVal;
uniform float Aqua_satVal;
uniform float Aqua_brightnessVal;

// How much a hue belongs to a band: falling from 1 in its middle, or at 0 degrees if it wraps, to 0
// at both bounds.
float weightOf(float hue, float minDegree, float maxDegree) {
    if (minDegree > maxDegree) {
        if (hue >= minDegree) return (hue - minDegree) / (360.0 - minDegree);
        if (hue > maxDegree) return 0.0;
        return maxDegree == 0.0 ? 1.0 : 1.0 - hue / maxDegree;
    }
    if (hue <= minDegree || hue >= maxDegree) return 0.0;
    float rise = (hue - minDegree) * 2.0 / (maxDegree - minDegree);
    return rise <= 1.0 ? rise : 2.0 - rise;
}

vec3 mixedIn(vec3 colour, vec3 changedHsl, float weight) {
    return clampUnit(colour * (1.0 - weight) + colourOfHsl(changedHsl) * weight);
}

// The weight comes from the incoming hue alone: a shifted hue stays in its band. Brightness counts
// one eighth.
vec3 withRange(vec3 colour, float minDegree, float maxDegree, float hueShift, float saturation,
               float brightnessChange) {
    if (hueShift == 0.0 && saturation == 0.0 && brightnessChange == 0.0) return colour;
    vec3 hsl = hslOf(colour);
    float weight = weightOf(hsl.x * 360.0, minDegree, maxDegree);
    if (hueShift != 0.0) {
        hsl.x += (hueShift > 0.0 ? hueShift * 1.2 : hueShift) / 360.0;
        if (hsl.x < 0.0) {
            hsl.x += 1.0;
        } else if (hsl.x > 1.0) {
            hsl.x -= 1.0;
        }
        colour = mixedIn(colour, hsl, weight);
    }
    if (saturation != 0.0) {
        hsl = hslOf(colour);
        hsl.y = clamp(hsl.y * (1.0 + saturation / 100.0), 0.0, 1.0);
        colour = mixedIn(colour, hsl, weight);
    }
    if (brightnessChange != 0.0) {
        hsl = hslOf(colour);
        hsl.z = clamp(hsl.z * (1.0 + brightnessChange / 100.0 / 8.0), 0.0, 1.0);
        colour = mixedIn(colour, hsl, weight);
    }
    return colour;
}

vec3 withRanges(vec3 colour) {
    colour = withRange(colour, Red_degreeMinVal, Red_degreeMaxVal, Red_hueVal,
                       Red_satVal, Red_brightnessVal);
    colour = withRange(colour, Orange_degreeMinVal, Orange_degreeMaxVal, Orange_hueVal,
                       Orange_satVal, Orange_brightnessVal);
    colour = withRange(colour, Yellow_degreeMinVal, Yellow_degreeMaxVal, Yellow_hueVal,
                       Yellow_satVal, Yellow_brightnessVal);
    colour = withRange(colour, Green_degreeMinVal, Green_degreeMaxVal, Green_hueVal,
                       Green_satVal, Green_brightnessVal);
    colour = withRange(colour, Magenta_degreeMinVal, Magenta_degreeMaxVal, Magenta_hueVal,
                       Magenta_satVal, Magenta_brightnessVal);
    colour = withRange(colour, Purple_degreeMinVal, Purple_degreeMaxVal, Purple_hueVal,
                       Purple_satVal, Purple_brightnessVal);
    colour = withRange(colour, Blue_degreeMinVal, Blue_degreeMaxVal, Blue_hueVal,
                       Blue_satVal, Blue_brightnessVal);
    colour = withRange(colour, Aqua_degreeMinVal, Aqua_degreeMaxVal, Aqua_hueVal,
                       Aqua_satVal, Aqua_brightnessVal);
    return colour;
}

