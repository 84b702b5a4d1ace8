#ifndef KELADJUST_FILTERS_SHARPEN_SHARPENPROGRAM_H
#define KELADJUST_FILTERS_SHARPEN_SHARPENPROGRAM_H

namespace keladjust {

/// Sharpening in the engine's program: its uniform, the slider value, and its function.
inline constexpr char sharpenProgram[] = R"glsl(
// Strength on a scale of 0..255.
uniform float sharpeness;

vec3 texelAt(vec2 position) {
    return texture2D(Sample, clamp(position, 0.0, 1.0)).rgb;
}

// Adds the difference between the texel and its four neighbours; beyond the border the texel on it
// stands in.
vec3 sharpened(vec3 centre) {
    vec2 right = vec2(1.0 / float(imageWidth), 0.0);
    vec2 down = vec2(0.0, 1.0 / float(imageHeight));
    vec3 detail = 4.0 * centre - texelAt(textureCoord - right) - texelAt(textureCoord + right) -
                  texelAt(textureCoord + down) - texelAt(textureCoord - down);
    return clampUnit(centre + detail * (sharpeness / 255.0));
}
)glsl";

}  // namespace keladjust

#endif
