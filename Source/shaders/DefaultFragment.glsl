uniform sampler2D Sample; varying vec2 textureCoord; void main() { gl_FragColor = texture2D(Sample, textureCoord); }
