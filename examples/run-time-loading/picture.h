/* Pictures in memory as Windows has them (rows of blue, green, red, padded to four bytes), read
   from and written to PPM files. */
#ifndef PICTURE_H
#define PICTURE_H

#include <stdbool.h>
#include <stddef.h>

typedef struct Picture {
    unsigned int width;
    unsigned int height;
    unsigned int bytesPerRow;
    unsigned char* bits; /* for freePicture */
} Picture;

bool readPicture(Picture* picture, const char* path);
bool writePicture(const Picture* picture, const char* path);
size_t pictureSize(const Picture* picture);
void freePicture(Picture* picture);

#endif
