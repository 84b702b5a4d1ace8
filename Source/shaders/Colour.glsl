// Colours are red, green, blue in 0..1.

float smallest(vec3 colour) {
    return min(colour.r, min(colour.g, colour.b));
}

float largest(vec3 colour) {
    return max(colour.r, max(colour.g, colour.b));
}

float lightness(vec3 colour) {
    return (smallest(colour) + largest(colour)) / 2.0;
}

vec3 clampUnit(vec3 colour) {
    return clamp(colour, 0.0, 1.0);
}

