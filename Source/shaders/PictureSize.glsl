// Pixels each way.
uniform int imageWidth;
uniform int imageHeight;

