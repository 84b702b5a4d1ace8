// Percent; 0 is none.
uniform float distortion;
uniform float fringing;

