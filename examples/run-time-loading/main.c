/* Adjusts a photograph with keladjust.dll, loaded while the program runs:

       host <keladjust.dll> <photograph.ppm> <adjusted.ppm> <table.cube>

   built by CMake, or with "cl /I ..\..\include main.c keladjust_library.c picture.c /Fe:host.exe".

   plugins.cfg and resources.cfg are looked for beside the DLL. Without them, or without a graphics
   card that will do, everything runs on the processor. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "keladjust_library.h"
#include "picture.h"

/* The text that stands before the names of files beside the DLL. */
static void folderOf(const char* path, char* folder, size_t size) {
    const char* end = strrchr(path, '\\');
    const char* const slash = strrchr(path, '/');
    if (end == NULL || (slash != NULL && slash > end)) end = slash;
    snprintf(folder, size, "%.*s", end == NULL ? 0 : (int)(end + 1 - path), path);
}

/* A host with a window would draw a bar, and let its user cancel with another result than 0. */
static int32_t showProgress(void* user, float share) {
    (void)user;
    printf("\r%3.0f %%", (double)share * 100);
    fflush(stdout);
    return 0;
}

static int adjust(const KeladjustLibrary* library, Picture* picture, char* files[]) {
    _AdjustParam settings = {0};
    KeladjustRun run = {0};
    KeladjustResult result;
    CxImage* image;
    settings.temperature = 12500;
    settings.exposure = 20;
    settings.contrast = 15;
    settings.range[KELADJUST_RANGE_GREEN].minDegree = 60;
    settings.range[KELADJUST_RANGE_GREEN].maxDegree = 180;
    settings.range[KELADJUST_RANGE_GREEN].saturation = 30;
    settings.clarity = 20;

    /* In place: the pixels stay ours. */
    image = library->createCxImage(&picture->bits, picture->width, picture->height, 24,
                                   IMAGE_FORMAT_BGR);
    if (image == NULL) return EXIT_FAILURE;
    run.size = sizeof run;
    run.progress = showProgress;
    result = library->keladjustRun(image, &settings, sizeof settings, &run);
    library->releaseCxImage(image);
    printf(
        "\n%s%s\n",
        run.pathTaken == KELADJUST_GPU ? "on the graphics card" : "on the processor: ", run.reason);
    if (result != KELADJUST_DONE) return EXIT_FAILURE;

    if (!writePicture(picture, files[0])) return EXIT_FAILURE;
    return library->writeLut3DFile(settings, files[1]) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int main(int count, char* arguments[]) {
    KeladjustLibrary library;
    Picture picture;
    char folder[MAX_PATH];
    int result;
    if (count != 5) {
        fprintf(stderr,
                "usage: host <keladjust.dll> <photograph.ppm> <adjusted.ppm> <table.cube>\n");
        return EXIT_FAILURE;
    }
    if (!readPicture(&picture, arguments[2])) {
        fprintf(stderr, "%s is not a picture in PPM\n", arguments[2]);
        return EXIT_FAILURE;
    }
    if (!loadKeladjust(&library, arguments[1])) {
        fprintf(stderr, "%s cannot be loaded\n", arguments[1]);
        freePicture(&picture);
        return EXIT_FAILURE;
    }
    folderOf(arguments[1], folder, sizeof folder);
    printf("keladjust %s\n", library.keladjustVersion());
    library.initOgreRunTime(folder, folder);
    result = adjust(&library, &picture, arguments + 3);
    library.releaseOgre();
    unloadKeladjust(&library);
    freePicture(&picture);
    return result;
}
