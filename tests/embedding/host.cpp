// A host in C++17 that works on pictures of the library's class.

#include <keladjust/CxImage.h>

#include <cstdio>

int main() {
    CxImage image(2, 2, 24, IMAGE_FORMAT_RGB);
    image.SetPixelColor(1, 1, {10, 20, 200, 0});
    saturationAdjustment(&image, -100);
    const _tagMyRGBQUAD pixel = image.GetPixelColor(1, 1, false);
    const bool grey = pixel.red == pixel.green && pixel.green == pixel.blue && pixel.red > 0;
    if (!grey || image.GetWidth() != 2 || image.GetSize() != 16) {
        std::fputs("embedding host: wrong pixels\n", stderr);
        return 1;
    }
    return 0;
}
