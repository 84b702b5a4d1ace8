#ifndef KELADJUST_FILTERS_LENS_LENSPROGRAM_H
#define KELADJUST_FILTERS_LENS_LENSPROGRAM_H

namespace keladjust {

/// Distortion and fringing in a program of their own: its uniforms, then its functions.
inline constexpr char lensUniforms[] = R"glsl(
// Percent; 0 is none.
uniform float distortion;
uniform float fringing;
)glsl";
inline constexpr char lensFunctions[] = R"glsl(
// From the middle of the picture, where there is none.
vec2 directionOf(vec2 offset, float len) {
    return len == 0.0 ? vec2(0.0) : offset / len;
}

// The place that the texel for `place` comes from. Lengths are measured in half diagonals when the
// distortion is positive, so that the corners stay, and in sides when it is negative.
vec2 distorted(vec2 place) {
    float d = distortion / 100.0;
    float unit = d < 0.0 ? 1.0 : sqrt(0.5);
    float scale = d >= 0.0 ? 1.0 / (d + 1.0) : 1.0;
    vec2 offset = (place - 0.5) / unit;
    float len = length(offset);
    float cube = len * len * len;
    float reach = (len + d * (d > 0.0 ? cube : cube * cube)) * scale;
    return directionOf(offset, len) * reach * unit + 0.5;
}

// A place of one channel: inside the picture, off its last texels by `margin`, then distorted like
// the rest of the picture.
vec2 fringePlace(vec2 offset, float margin) {
    vec2 place = min(max(offset + 0.5, 0.0), 1.0 - margin);
    return distortion != 0.0 ? distorted(place) : place;
}

void main() {
    vec2 place = distortion != 0.0 ? distorted(textureCoord) : textureCoord;
    vec4 result = texture2D(Sample, place);
    if (fringing != 0.0) {
        float f = fringing / 100.0;
        float spread = f * 0.03;
        float margin = (f > 0.0 ? 2.0 : 1.0) / max(float(imageWidth), float(imageHeight));
        vec2 offset = textureCoord - 0.5;
        float len = length(offset);
        float reach = (len + f * pow(len, 10.0)) * (1.0 + spread);
        vec2 direction = directionOf(offset, len);
        // Blue lies inside green, red outside.
        result.r = texture2D(Sample, fringePlace(direction * (1.0 + spread) * reach, margin)).r;
        result.g = texture2D(Sample, fringePlace(direction * reach, margin)).g;
        result.b = texture2D(Sample, fringePlace(direction * (1.0 - spread) * reach, margin)).b;
    }
    gl_FragColor = result;
}
)glsl";

}  // namespace keladjust

#endif
