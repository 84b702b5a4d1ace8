// Of the vignette's inside, in percent.
uniform float exposure;

void main() {
    vec4 texel = texture2D(Sample, textureCoord);
    vec3 colour = texel.rgb;
    if (sharpeness != 0.0) colour = sharpened(colour);
    colour = withRanges(colour);
    if (amount != 0.0 || exposure != 0.0) colour = withVignette(colour, exposure);
    gl_FragColor = vec4(colour, texel.a);
}
