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

// Difference of the largest and the smallest channel of a pure colour of some lightness. Not as
// 1 - |2 light - 1|: compilers gather its ones with the small term of hslOf() and lose that.
float largestChroma(float light) {
    return 2.0 * min(light, 1.0 - light);
}

// Hue in turns, saturation, lightness; greys have the hue of blue. The small terms keep greys, black
// and white from dividing by zero.
vec3 hslOf(vec3 colour) {
    vec4 p = colour.g < colour.b ? vec4(colour.b, colour.g, -1.0, 2.0 / 3.0)
                                 : vec4(colour.g, colour.b, 0.0, -1.0 / 3.0);
    vec4 q = colour.r < p.x ? vec4(p.x, p.y, p.w, colour.r) : vec4(colour.r, p.y, p.z, p.x);
    float chroma = q.x - min(q.w, q.y);
    if (chroma == 0.0) return vec3(2.0 / 3.0, 0.0, colour.r);
    float hue = abs((q.w - q.y) / (6.0 * chroma + 1e-10) + q.z);
    float light = q.x - chroma / 2.0;
    return vec3(hue, chroma / (largestChroma(light) + 1e-10), light);
}

// The way back. Each channel rises over the first sixth of a turn, stays for two and falls over the
// fourth; red is a third of a turn ahead of green, blue as much behind.
vec3 colourOfHsl(vec3 hsl) {
    vec3 turn = hsl.x + vec3(1.0, 0.0, -1.0) / 3.0;
    if (turn.r > 1.0) turn.r -= 1.0;
    if (turn.b < 0.0) turn.b += 1.0;
    vec3 pure = min(6.0 * turn, clampUnit(4.0 - 6.0 * turn));
    return hsl.z + largestChroma(hsl.z) * hsl.y * (pure - 0.5);
}

