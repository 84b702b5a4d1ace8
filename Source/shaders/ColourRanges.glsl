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

// Hue in degrees, saturation, lightness. Greys have the hue of blue.
vec3 hslOf(vec3 colour) {
    float hi = largest(colour);
    float lo = smallest(colour);
    if (lo == hi) return vec3(240.0, 0.0, colour.r);
    float delta = hi - lo;
    float light = (hi + lo) * 0.5;
    float saturation = light < 0.5 ? delta / (hi + lo) : delta / (2.0 - hi - lo);
    float hue;
    if (colour.r == hi) {
        hue = (colour.g - colour.b) / delta;
    } else if (colour.g == hi) {
        hue = 2.0 + (colour.b - colour.r) / delta;
    } else {
        hue = 4.0 + (colour.r - colour.g) / delta;
    }
    hue /= 6.0;
    if (hue < 0.0) hue += 1.0;
    return vec3(hue * 360.0, saturation, light);
}

// One channel of a colour between p and q, at `turn` of the way round.
float channelAt(float turn, float p, float q) {
    if (turn < 0.16666667) return p + (q - p) * 6.0 * turn;
    if (turn < 0.5) return q;
    if (turn < 0.6666667) return p + (q - p) * (0.6666667 - turn) * 6.0;
    return p;
}

vec3 colourOfHsl(vec3 hsl) {
    float saturation = hsl.y;
    float light = hsl.z;
    if (saturation == 0.0) return vec3(light);
    float turn = hsl.x / 360.0;
    float q = light < 0.5 ? light * (1.0 + saturation) : light + saturation - light * saturation;
    float p = 2.0 * light - q;
    float red = turn + 0.33333334;
    if (red > 1.0) red -= 1.0;
    float blue = turn - 0.33333334;
    if (blue < 0.0) blue += 1.0;
    return vec3(channelAt(red, p, q), channelAt(turn, p, q), channelAt(blue, p, q));
}

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
    float weight = weightOf(hsl.x, minDegree, maxDegree);
    if (hueShift != 0.0) {
        hsl.x += hueShift > 0.0 ? hueShift * 1.2 : hueShift;
        if (hsl.x < 0.0) {
            hsl.x += 360.0;
        } else if (hsl.x > 360.0) {
            hsl.x -= 360.0;
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

