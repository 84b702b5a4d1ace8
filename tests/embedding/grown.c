/* A host for libraries of one name whose records differ in length. Prints all that it gets from
   calls that take its own record, by value and by address, so that two libraries can be compared.

   Compiled with a header that has the slot `planted`, it tries that one instead: "old" with a
   library that does not know it, "new" with one that does, where it is an exposure. */

#include <keladjust/keladjust.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static unsigned char pixels[64 * 48 * 4];

static void paint(void) {
    size_t i;
    for (i = 0; i < sizeof pixels; ++i) pixels[i] = (unsigned char)(i * 73 + i / 256 * 29);
}

static CxImage* picture(void) {
    unsigned char* bits = pixels;
    paint();
    return createCxImage(&bits, 64, 48, 32, IMAGE_FORMAT_BGRA);
}

#ifndef PLANTED

static void print(const char* what, const void* bytes, size_t count) {
    const unsigned char* byte = (const unsigned char*)bytes;
    unsigned long sum = 5381;
    size_t i;
    for (i = 0; i < count; ++i) sum = (sum * 33 + byte[i]) & 0xFFFFFFFFul;
    printf("%s %lu\n", what, sum);
}

static void someSettings(_AdjustParam* record) {
    memset(record, 0, sizeof *record);
    record->temperature = 9000;
    record->tint = 12;
    record->contrast = 20;
    record->range[KELADJUST_RANGE_BLUE].minDegree = 180;
    record->range[KELADJUST_RANGE_BLUE].maxDegree = 300;
    record->range[KELADJUST_RANGE_BLUE].saturation = 40;
    record->vignetteAmount = -30;
    record->vignetteSize = 40;
    record->clarity = 25;
    record->luminanceNoiseReduction = 10;
}

/* Leaves the stack, where records by value are passed, full of what is no setting. */
static void litter(volatile unsigned char value) {
    volatile unsigned char here[4096];
    size_t i;
    for (i = 0; i < sizeof here; ++i) here[i] = value;
}

int main(int argc, char** argv) {
    static float points[9 * 9 * 9 * 3];
    _AdjustParam record;
    CxImage* image = picture();
    if (argc < 2) return EXIT_FAILURE;
    someSettings(&record);
    initOgreRunTime("nowhere/", "nowhere/");
    litter(0x42);
    doAdjust(image, record);
    print("doAdjust", pixels, sizeof pixels);
    litter(0x42);
    print("getLut3dData", getLut3dData(record), sizeof(float) * 3 * 32 * 32 * 32);
    litter(0x42);
    if (!writeLut3DFile(record, argv[1])) return EXIT_FAILURE;
    paint();
    if (keladjustRun(image, &record, sizeof record, NULL) != KELADJUST_DONE) return EXIT_FAILURE;
    print("keladjustRun", pixels, sizeof pixels);
    if (!keladjustBake(&record, sizeof record, 9, true, points)) return EXIT_FAILURE;
    print("keladjustBake", points, sizeof points);
    releaseCxImage(image);
    releaseOgre();
    return EXIT_SUCCESS;
}

#else

int main(int argc, char** argv) {
    unsigned char expected[sizeof pixels];
    _AdjustParam record;
    CxImage* image = picture();
    int count = 0;
    KeladjustResult result;
    const int isNew = argc > 1 && strcmp(argv[1], "new") == 0;
    keladjustSettings(&count);
    if (count != (isNew ? KELADJUST_SLOT_COUNT : KELADJUST_SLOT_COUNT - 1)) return EXIT_FAILURE;
    memset(&record, 0, sizeof record);
    record.temperature = 11500;

    /* A slot that nobody has moved is in nobody's way. */
    memcpy(expected, pixels, sizeof pixels);
    if (keladjustRun(image, &record, sizeof record, NULL) != KELADJUST_DONE) return EXIT_FAILURE;
    if (memcmp(pixels, expected, sizeof pixels) != 0) return EXIT_FAILURE;

    record.planted = 50;
    result = keladjustRun(image, &record, sizeof record, NULL);
    if (!isNew) return result == KELADJUST_REFUSED ? EXIT_SUCCESS : EXIT_FAILURE;
    if (result != KELADJUST_DONE) return EXIT_FAILURE;
    memcpy(expected, pixels, sizeof pixels);
    paint();
    exposureAdjustment(image, 50);
    return memcmp(pixels, expected, sizeof pixels) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

#endif
