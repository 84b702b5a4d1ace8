/* A host in C90 that knows the library from its installed headers alone: brightens a grey pixel, is
   told what its record holds, and with the argument "engine" has the rendering engine started. */

#include <keladjust/keladjust.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int fail(const char* what) {
    fprintf(stderr, "embedding host: %s\n", what);
    return EXIT_FAILURE;
}

static void identity(_AdjustParam* record) {
    memset(record, 0, sizeof *record);
    record->temperature = 11500;
}

static int adjusts(void) {
    /* 100 x 2^(50 / 50 x 0.6), cut off. */
    const unsigned char expected = 151;
    unsigned char pixels[4] = {100, 100, 100, 255};
    unsigned char* bits = pixels;
    _AdjustParam record;
    KeladjustRun run;
    CxImage* image = createCxImage(&bits, 1, 1, 32, IMAGE_FORMAT_BGRA);
    identity(&record);
    record.exposure = 50;
    memset(&run, 0, sizeof run);
    run.size = sizeof run;
    run.path = KELADJUST_CPU;
    if (keladjustRun(image, &record, sizeof record, &run) != KELADJUST_DONE) return 0;
    if (pixels[0] != expected || pixels[3] != 255) return 0;
    pixels[0] = pixels[1] = pixels[2] = 100;
    doAdjust(image, record);
    releaseCxImage(image);
    return pixels[0] == expected && pixels[1] == expected && pixels[2] == expected;
}

int main(int argc, char** argv) {
    char version[32];
    int count = 0;
    sprintf(version, "%d.%d.%d", KELADJUST_VERSION_MAJOR, KELADJUST_VERSION_MINOR,
            KELADJUST_VERSION_PATCH);
    if (strcmp(keladjustVersion(), version) != 0) return fail("the header is of another version");
    if (strcmp(keladjustSettings(&count)[2].name, "exposure") != 0) return fail("slot 2");
    if (count < KELADJUST_SLOT_COUNT) return fail("settings are missing");
    if (!adjusts()) return fail("wrong pixels");
    if (argc > 1 && strcmp(argv[1], "engine") == 0) {
        if (!initOgreRunTime(argv[2], argv[2])) return fail("the engine does not start");
        releaseOgre();
    }
    return EXIT_SUCCESS;
}
