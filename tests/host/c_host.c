/* A host in C: the public header compiles as C, the record goes by value, results come back. */

#include <keladjust/keladjust.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define CHECK(condition)                                            \
    do {                                                            \
        if (!(condition)) {                                         \
            fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
            return EXIT_FAILURE;                                    \
        }                                                           \
    } while (0)

/* Notes the last share; a host in C cancels with a result. */
static int32_t note(void* user, float share) {
    *(float*)user = share;
    return 0;
}
static int32_t cancel(void* user, float share) {
    (void)user;
    (void)share;
    return 1;
}

static int checkVersion(void) {
    char expected[32];
    sprintf(expected, "%d.%d.%d", KELADJUST_VERSION_MAJOR, KELADJUST_VERSION_MINOR,
            KELADJUST_VERSION_PATCH);
    CHECK(strcmp(keladjustVersion(), expected) == 0);
    return EXIT_SUCCESS;
}

/* A record made of what the library tells about it. */
static int checkSettings(_AdjustParam* record) {
    int count = 0;
    int i;
    const KeladjustSetting* const settings = keladjustSettings(&count);
    CHECK((size_t)count * 4 == sizeof *record);
    for (i = 0; i < count; ++i) {
        char* const slot = (char*)record + 4 * settings[i].slot;
        const int32_t whole = (int32_t)settings[i].usual;
        CHECK(settings[i].name[0] != '\0');
        if (settings[i].isInteger) {
            memcpy(slot, &whole, sizeof whole);
        } else {
            memcpy(slot, &settings[i].usual, sizeof settings[i].usual);
        }
    }
    CHECK(record->temperature == 11500);
    return EXIT_SUCCESS;
}

static int checkRun(CxImage* image, const unsigned char* pixels, _AdjustParam record) {
    float share = -1;
    KeladjustRun run = {0};
    run.size = sizeof run;
    run.progress = cancel;
    record.brightness = 50.0f; /* times 1.5 */
    CHECK(keladjustRun(image, &record, sizeof record, &run) == KELADJUST_CANCELLED);
    CHECK(pixels[0] == 10);
    run.progress = note;
    run.user = &share;
    CHECK(keladjustRun(image, &record, sizeof record, &run) == KELADJUST_DONE);
    CHECK(pixels[0] == 15 && pixels[1] == 30 && pixels[2] == 45);
    CHECK(run.pathTaken == KELADJUST_CPU);
    CHECK(share == 1);
    return EXIT_SUCCESS;
}

static int checkTable(const _AdjustParam* record) {
    float points[3 * 8] = {-1};
    CHECK(keladjustBake(record, sizeof *record, 2, true, points));
    CHECK(points[0] == 0 && points[3] == 1 && points[4] == 0 && points[23] == 1);
    CHECK(!keladjustBake(record, sizeof *record, 1, true, points));
    return EXIT_SUCCESS;
}

static int checkVeil(void) {
    const unsigned char map[4] = {10, 20, 30, 40};
    unsigned char* const veil = estimateVeil(map, map, 2, 2, 0.5f);
    CHECK(veil != NULL);
    CHECK(veil[0] == 5 && veil[3] == 20);
    keladjustFree(veil);
    keladjustFree(NULL);
    return EXIT_SUCCESS;
}

static int checkAdditions(void) {
    unsigned char pixels[] = {10, 20, 30, 255, 100, 150, 200, 128};
    unsigned char* bits = pixels;
    _AdjustParam record;
    CxImage* const image = createCxImage(&bits, 2, 1, 32, IMAGE_FORMAT_BGRA);
    CHECK(image != NULL);
    CHECK(checkVersion() == EXIT_SUCCESS);
    CHECK(checkSettings(&record) == EXIT_SUCCESS);
    CHECK(checkRun(image, pixels, record) == EXIT_SUCCESS);
    CHECK(checkTable(&record) == EXIT_SUCCESS);
    CHECK(checkVeil() == EXIT_SUCCESS);
    releaseCxImage(image);
    return EXIT_SUCCESS;
}

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
    CHECK(checkAdditions() == EXIT_SUCCESS);
    releaseOgre();
    return EXIT_SUCCESS;
}
