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

static int adjust(const KeladjustLibrary* library, Picture* picture, char* files[]) {
    _AdjustParam settings = {0};
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
    library->doAdjust(image, settings);
    library->releaseCxImage(image);

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
    if (!library.initOgreRunTime(folder, folder))
        puts("No graphics card for this: on the processor.");
    result = adjust(&library, &picture, arguments + 3);
    library.releaseOgre();
    unloadKeladjust(&library);
    freePicture(&picture);
    return result;
}
