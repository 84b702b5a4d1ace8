// Stages that hold their place in the pipeline until they are written: they pass the picture on.

#include <keladjust/CxImage.h>

CxImage* vignetteAdjustFilter(CxImage* image, float, float, float, float, float, float) {
    return image;
}
CxImage* clarity(CxImage* image, float) {
    return image;
}
CxImage* sharpen(CxImage* image, float) {
    return image;
}
CxImage* distortFilter(CxImage* image, float) {
    return image;
}
CxImage* fringingFilter(CxImage* image, float) {
    return image;
}
CxImage* dehaze(CxImage* image, float) {
    return image;
}
CxImage* diffuse(CxImage* image, float) {
    return image;
}
CxImage* deNoiseRGB(CxImage* image, float) {
    return image;
}
CxImage* deNoiseLumiance(CxImage* image, float) {
    return image;
}
