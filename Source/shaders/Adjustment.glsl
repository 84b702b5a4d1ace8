// The eleven stages that look at one pixel's colour alone. Each has one setting, a slider value.
uniform int temperature;
uniform float tint;
uniform float exposure;
uniform float brightness;
uniform float contrast;
uniform float vib;
uniform float sat;
uniform float highLight;
uniform float shadow;
uniform float whiteLevel;
uniform float blackLevel;

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

// May leave 0..1: the next stage that clamps, or the picture written to, brings it back.
vec3 withTint(vec3 colour) {
    float grey = dot(colour, vec3(0.3, 0.59, 0.11));
    float shift = tint * 100.0 / 225.0 / 255.0 * grey;
    return colour + vec3(shift, -shift, shift);
}

vec3 withExposure(vec3 colour) {
    return clampUnit(colour * exp2(exposure / 50.0 * 0.6));
}

vec3 withBrightness(vec3 colour) {
    float factor = brightness > 0.0 ? 1.0 + brightness / 100.0
                                    : (1.0 - 1.0 / (0.99 + brightness / 253.0)) * 0.6;
    return clampUnit(factor > 0.0 ? colour * factor : colour + factor);
}

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

// The duller the pixel, the smaller the mask and the stronger the effect.
vec3 withVibrance(vec3 colour) {
    float luma = lightness(colour);
    vec3 mask = clampUnit(colour - luma);
    float ratio = 1.0 + vib / 100.0 * 0.8 * (1.0 - lightness(mask));
    return clampUnit(colour * ratio + luma * (1.0 - ratio));
}

// Pushes the channels away from the lightness, at most to full saturation, or pulls them to it.
vec3 withSaturation(vec3 colour) {
    float hi = largest(colour);
    float lo = smallest(colour);
    float delta = hi - lo;
    if (delta == 0.0) return colour;
    float sum = hi + lo;
    float light = sum * 0.5;
    float saturation = light < 0.5 ? delta / sum : delta / (2.0 - sum);
    float change = sat / 100.0;
    if (change >= 0.0) {
        float rest = saturation + change >= 1.0 ? saturation : 1.0 - change;
        colour += (colour - light) * (1.0 / rest - 1.0);
    } else {
        colour = light + (colour - light) * (1.0 + change);
    }
    return clampUnit(colour);
}

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

// A stage at its identity value is left out, so that it costs nothing and changes no bit.
vec3 adjusted(vec3 colour) {
    if (temperature != neutralTemperature) colour = withTemperature(colour);
    if (tint != 0.0) colour = withTint(colour);
    if (exposure != 0.0) colour = withExposure(colour);
    if (brightness != 0.0) colour = withBrightness(colour);
    if (contrast != 0.0) colour = withContrast(colour);
    if (vib != 0.0) colour = withVibrance(colour);
    if (sat != 0.0) colour = withSaturation(colour);
    if (highLight != 0.0) colour = withHighlights(colour);
    if (shadow != 0.0) colour = withShadows(colour);
    if (whiteLevel != 0.0) colour = withWhites(colour);
    if (blackLevel != 0.0) colour = withBlacks(colour);
    return colour;
}

