// The picture, texel (0, 0) first, and where this fragment lies in it: 0..1 each way.
uniform sampler2D Sample;
varying vec2 textureCoord;

