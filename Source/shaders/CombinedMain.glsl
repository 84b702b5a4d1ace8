void main() {
    vec4 texel = texture2D(Sample, textureCoord);
    vec3 colour = withRanges(adjusted(texel.rgb));
    if (amount != 0.0 || vignette_exposure != 0.0) {
        colour = withVignette(colour, vignette_exposure);
    }
    gl_FragColor = vec4(colour, texel.a);
}
