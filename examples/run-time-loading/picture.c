#include "picture.h"

#include <stdio.h>
#include <stdlib.h>

/* PPM files have red first; the other way round is the same exchange. */
static void exchangeRedAndBlue(unsigned char* row, unsigned int width) {
    unsigned int x;
    for (x = 0; x < width; ++x) {
        const unsigned char first = row[3 * x];
        row[3 * x] = row[3 * x + 2];
        row[3 * x + 2] = first;
    }
}

static unsigned char* rowOf(const Picture* picture, unsigned int y) {
    return picture->bits + (size_t)picture->bytesPerRow * y;
}

static bool readRows(Picture* picture, FILE* file) {
    unsigned int y;
    for (y = 0; y < picture->height; ++y) {
        if (fread(rowOf(picture, y), 3, picture->width, file) != picture->width) return false;
        exchangeRedAndBlue(rowOf(picture, y), picture->width);
    }
    return true;
}

bool readPicture(Picture* picture, const char* path) {
    bool complete = false;
    FILE* const file = fopen(path, "rb");
    if (file == NULL) return false;
    if (fscanf(file, "P6 %5u %5u 255", &picture->width, &picture->height) == 2 &&
        picture->width > 0 && picture->height > 0 && fgetc(file) != EOF) {
        picture->bytesPerRow = (picture->width * 3 + 3) / 4 * 4;
        picture->bits = (unsigned char*)calloc(picture->height, picture->bytesPerRow);
        complete = picture->bits != NULL && readRows(picture, file);
        if (!complete) freePicture(picture);
    }
    fclose(file);
    return complete;
}

bool writePicture(const Picture* picture, const char* path) {
    bool complete = true;
    unsigned int y;
    FILE* const file = fopen(path, "wb");
    if (file == NULL) return false;
    fprintf(file, "P6\n%u %u\n255\n", picture->width, picture->height);
    for (y = 0; y < picture->height; ++y) {
        exchangeRedAndBlue(rowOf(picture, y), picture->width);
        complete = fwrite(rowOf(picture, y), 3, picture->width, file) == picture->width && complete;
        exchangeRedAndBlue(rowOf(picture, y), picture->width);
    }
    return fclose(file) == 0 && complete;
}

size_t pictureSize(const Picture* picture) {
    return (size_t)picture->bytesPerRow * picture->height;
}

void freePicture(Picture* picture) {
    free(picture->bits);
    picture->bits = NULL;
}
