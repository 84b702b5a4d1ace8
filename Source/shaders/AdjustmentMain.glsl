void main() {
    vec4 texel = texture2D(Sample, textureCoord);
    gl_FragColor = vec4(adjusted(texel.rgb), texel.a);
}
