/* A host in C: the public header compiles as C, the record goes by value, results come back. */

#include <keladjust/keladjust.h>

#include <stdio.h>
#include <stdlib.h>

#define CHECK(condition)                                            \
    do {                                                            \
        if (!(condition)) {                                         \
            fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
            return EXIT_FAILURE;                                    \
        }                                                           \
    } while (0)

int main(void) {
    unsigned char pixels[] = {10, 20, 30, 255, 100, 150, 200, 128};
    unsigned char* bits = pixels;
    _AdjustParam settings = {.temperature = 11500};
    CxImage* image = createCxImage(&bits, 2, 1, 32, IMAGE_FORMAT_BGRA);
    CHECK(image != NULL);
    CHECK(sizeof(settings) == 260);

    CHECK(doAdjust(image, settings) == image);
    CHECK(pixels[0] == 10 && pixels[6] == 200 && pixels[7] == 128);

    settings.brightness = 50.0f; /* times 1.5 */
    CHECK(doAdjust(image, settings) == image);
    CHECK(pixels[0] == 15 && pixels[1] == 30 && pixels[2] == 45 && pixels[3] == 255);
    CHECK(pixels[4] == 150 && pixels[5] == 225 && pixels[6] == 255 && pixels[7] == 128);

    releaseCxImage(image);
    CHECK(bits == pixels);
    releaseOgre();
    return EXIT_SUCCESS;
}
