/* A host in C that loads keladjust.dll while it runs and links nothing of it:

       run_time_loading_host <way> <keladjust.dll> <prefix of the configuration> <photograph.ppm>
                             <list of exported names> <version>

   names         every exported name is there
   version       Windows can tell the version
   cpu, gpu      a photograph is adjusted, a table baked and written, everything released, 50 times:
                 threads, handles and memory are back where they were
   loaded-cpu,
   loaded-gpu    the same while the host has loaded the DLL once more, so that it stays
   plain         unloading without a call
   unreleased    unloading without releaseOgre, where no engine runs
   kept          unloading while the engine runs, which keeps the DLL and its own
   exits         the program ends while the engine runs */

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "keladjust_library.h"
#include "picture.h"

/* After <windows.h>, which the library's header has included. */
#include <psapi.h>
#include <tlhelp32.h>

#define CHECK(condition)                                            \
    do {                                                            \
        if (!(condition)) {                                         \
            fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
            exit(EXIT_FAILURE);                                     \
        }                                                           \
    } while (0)

typedef struct Arguments {
    const char* dll;
    const char* prefix;
    const char* photograph;
    const char* names;
    const char* version;
} Arguments;

enum { cycles = 50, warmUpCycles = 5 };

static bool isLoaded(void) {
    return GetModuleHandleA("keladjust.dll") != NULL;
}

/* The engine's own DLL, and the one that this is made with. */
static bool isEngineLoaded(void) {
    return GetModuleHandleA("keladjust-engine.dll") != NULL ||
           GetModuleHandleA("OgreMain.dll") != NULL;
}

static void load(KeladjustLibrary* library, const Arguments* arguments) {
    CHECK(loadKeladjust(library, arguments->dll));
    CHECK(isLoaded());
}

static _AdjustParam identity(void) {
    _AdjustParam settings = {0};
    settings.temperature = 11500;
    return settings;
}

/* What the process has of things that must not grow. */

typedef struct Holdings {
    DWORD threads;
    DWORD handles;
    DWORD firstFreeIndex; /* of thread-local storage: a process has 1088 */
    size_t bytes;
} Holdings;

static DWORD threadCount(void) {
    THREADENTRY32 thread = {0};
    DWORD count = 0;
    BOOL more;
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    CHECK(all != INVALID_HANDLE_VALUE);
    thread.dwSize = sizeof thread;
    for (more = Thread32First(all, &thread); more; more = Thread32Next(all, &thread)) {
        if (thread.th32OwnerProcessID == GetCurrentProcessId()) ++count;
    }
    CloseHandle(all);
    return count;
}

/* Handles are multiples of four. The system's own count would do, but Wine does not keep one. */
static DWORD handleCount(void) {
    DWORD flags;
    DWORD count = 0;
    uintptr_t value;
    for (value = 4; value < 1 << 15; value += 4) {
        if (GetHandleInformation((HANDLE)value, &flags)) ++count;
    }
    return count;
}

static Holdings holdings(void) {
    Holdings now;
    PROCESS_MEMORY_COUNTERS memory;
    now.threads = threadCount();
    now.handles = handleCount();
    now.firstFreeIndex = TlsAlloc();
    CHECK(now.firstFreeIndex != TLS_OUT_OF_INDEXES);
    TlsFree(now.firstFreeIndex);
    CHECK(GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory));
    now.bytes = memory.PagefileUsage;
    printf("%lu threads, %lu handles, index %lu, %lu kB\n", now.threads, now.handles,
           now.firstFreeIndex, (unsigned long)(now.bytes / 1024));
    return now;
}

/* One cycle. */

/* An exposure of 50 is a gain of 2 to the power of 0.6, truncated. Rendering rounds to the nearest
   level, and the software driver computes in single precision: a level of difference. */
static void expectBrighter(const Picture* before, const Picture* after, int tolerance) {
    unsigned int x;
    unsigned int y;
    for (y = 0; y < before->height; ++y) {
        for (x = 0; x < before->width * 3; ++x) {
            const size_t at = (size_t)before->bytesPerRow * y + x;
            const float gained = (float)before->bits[at] * 1.51571659f;
            const int expected = gained > 255 ? 255 : (int)gained;
            CHECK(abs(after->bits[at] - expected) <= tolerance);
        }
    }
}

static void adjustPhotograph(const KeladjustLibrary* library, const Arguments* arguments,
                             int tolerance) {
    _AdjustParam settings = identity();
    Picture before;
    Picture after;
    unsigned char* bits;
    CxImage* image;
    CHECK(readPicture(&before, arguments->photograph));
    CHECK(readPicture(&after, arguments->photograph));
    bits = after.bits;
    image = library->createCxImage(&after.bits, after.width, after.height, 24, IMAGE_FORMAT_BGR);
    CHECK(image != NULL);
    CHECK(library->doAdjust(image, settings) == image);
    CHECK(memcmp(after.bits, before.bits, pictureSize(&before)) == 0);
    settings.exposure = 50;
    CHECK(library->doAdjust(image, settings) == image);
    CHECK(after.bits == bits);
    expectBrighter(&before, &after, tolerance);
    library->releaseCxImage(image);
    CHECK(after.bits == bits);
    freePicture(&after);
    freePicture(&before);
}

/* The identity, with red in steps of 32 entries and a row of eight tiles. */
static void bakeTable(const KeladjustLibrary* library) {
    int red;
    const float* const table = library->getLut3dData(identity());
    CHECK(table != NULL);
    for (red = 0; red < 32; ++red) {
        const float* const entry = table + 3 * (8192 * (red / 8) + 256 * 7 + 32 * (red % 8) + 5);
        CHECK(entry[0] == (float)red / 31.0f);
        CHECK(entry[1] == 7.0f / 31.0f);
        CHECK(entry[2] == 5.0f / 31.0f);
    }
}

static void writeTable(const KeladjustLibrary* library) {
    char folder[MAX_PATH];
    char path[MAX_PATH];
    char line[128];
    int lines = 0;
    FILE* file;
    CHECK(GetTempPathA(sizeof folder, folder) != 0);
    CHECK(GetTempFileNameA(folder, "kel", 0, path) != 0);
    CHECK(library->writeLut3DFile(identity(), path));
    file = fopen(path, "rb");
    CHECK(file != NULL);
    while (fgets(line, sizeof line, file) != NULL) {
        const size_t length = strlen(line);
        CHECK(length >= 2 && strcmp(line + length - 2, "\r\n") == 0);
        ++lines;
    }
    CHECK(lines == 8 + 32 * 32 * 32);
    CHECK(strcmp(line, "1.00000000 1.00000000 1.00000000\r\n") == 0);
    CHECK(fclose(file) == 0);
    CHECK(DeleteFileA(path));
}

static void cycle(const Arguments* arguments, bool onGpu) {
    const char* const prefix = onGpu ? arguments->prefix : "nowhere/";
    KeladjustLibrary library;
    load(&library, arguments);
    CHECK(!isEngineLoaded());
    CHECK(library.initOgreRunTime(prefix, prefix) == onGpu);
    CHECK(isEngineLoaded() == onGpu);
    adjustPhotograph(&library, arguments, onGpu ? 1 : 0);
    bakeTable(&library);
    writeTable(&library);
    library.releaseOgre();
    CHECK(!isEngineLoaded());
    unloadKeladjust(&library);
}

/* Handles that GCC's thread library keeps for use again: as many as threads happened to end late.
 */
enum { keptHandles = 4 };

/* The graphics driver keeps memory for as many threads as happened to run at once: 1.3 MB a cycle
   were seen on a busy machine. That nothing of ours stays shows without it. */
enum { driverKilobytes = 2500 };

/* One picture a cycle would be 30 kB. */
enum { heapKilobytes = 20 };

static void repeat(const Arguments* arguments, bool onGpu, int times) {
    const size_t kilobytes = onGpu ? driverKilobytes : heapKilobytes;
    Holdings first;
    Holdings last;
    int i;
    for (i = 0; i < warmUpCycles; ++i) cycle(arguments, onGpu);
    first = holdings();
    for (i = 0; i < times; ++i) cycle(arguments, onGpu);
    last = holdings();
    CHECK(last.threads <= first.threads);
    CHECK(last.handles <= first.handles + keptHandles);
    CHECK(last.firstFreeIndex <= first.firstFreeIndex);
    CHECK(last.bytes <= first.bytes + kilobytes * 1024 * (size_t)times);
}

static void repeatUnloading(const Arguments* arguments, bool onGpu) {
    repeat(arguments, onGpu, cycles);
    CHECK(!isLoaded());
}

static void repeatLoaded(const Arguments* arguments, bool onGpu) {
    KeladjustLibrary library;
    load(&library, arguments);
    repeat(arguments, onGpu, onGpu ? 15 : cycles);
    CHECK(isLoaded());
    unloadKeladjust(&library);
    CHECK(!isLoaded());
}

/* The ways of letting go. */

static void unloadWithoutACall(const Arguments* arguments) {
    KeladjustLibrary library;
    int i;
    for (i = 0; i < cycles; ++i) {
        load(&library, arguments);
        unloadKeladjust(&library);
        CHECK(!isLoaded());
    }
    CHECK(threadCount() == 1);
}

static void unloadWithoutRelease(const Arguments* arguments) {
    KeladjustLibrary library;
    int i;
    for (i = 0; i < cycles; ++i) {
        load(&library, arguments);
        CHECK(!library.initOgreRunTime("nowhere/", "nowhere/"));
        adjustPhotograph(&library, arguments, 0);
        bakeTable(&library);
        unloadKeladjust(&library);
        CHECK(!isLoaded());
    }
    CHECK(threadCount() == 1);
}

static void unloadWhileTheEngineRuns(const Arguments* arguments) {
    KeladjustLibrary library;
    KeladjustLibrary again;
    load(&library, arguments);
    CHECK(library.initOgreRunTime(arguments->prefix, arguments->prefix));
    adjustPhotograph(&library, arguments, 1);
    unloadKeladjust(&library);
    CHECK(isLoaded() && isEngineLoaded());
    load(&again, arguments);
    adjustPhotograph(&again, arguments, 1);
    again.releaseOgre();
    unloadKeladjust(&again);
    CHECK(!isLoaded());
}

static void endWhileTheEngineRuns(const Arguments* arguments) {
    KeladjustLibrary library;
    load(&library, arguments);
    CHECK(library.initOgreRunTime(arguments->prefix, arguments->prefix));
    adjustPhotograph(&library, arguments, 1);
}

/* What the DLL says of itself. */

static void findNames(const Arguments* arguments) {
    char line[256];
    int count = 0;
    KeladjustLibrary library;
    FILE* const file = fopen(arguments->names, "r");
    CHECK(file != NULL);
    load(&library, arguments);
    while (fgets(line, sizeof line, file) != NULL) {
        line[strcspn(line, "\r\n")] = '\0';
        if (line[0] == '\0' || line[0] == '#') continue;
        if (GetProcAddress(library.module, line) == NULL) {
            fprintf(stderr, "%s is missing\n", line);
            exit(EXIT_FAILURE);
        }
        ++count;
    }
    CHECK(count > 0);
    CHECK(GetProcAddress(library.module, "noSuchName") == NULL);
    unloadKeladjust(&library);
    CHECK(fclose(file) == 0);
}

static void readVersion(const Arguments* arguments) {
    static char block[4096];
    VS_FIXEDFILEINFO* numbers = NULL;
    char* text = NULL;
    char fromNumbers[64];
    UINT size = 0;
    CHECK(GetFileVersionInfoA(arguments->dll, 0, sizeof block, block));
    CHECK(VerQueryValueA(block, "\\", (void**)&numbers, &size));
    CHECK(size == sizeof *numbers);
    sprintf(fromNumbers, "%d.%d.%d", HIWORD(numbers->dwFileVersionMS),
            LOWORD(numbers->dwFileVersionMS), HIWORD(numbers->dwFileVersionLS));
    CHECK(strcmp(fromNumbers, arguments->version) == 0);
    CHECK(numbers->dwProductVersionMS == numbers->dwFileVersionMS);
    CHECK(numbers->dwFileType == VFT_DLL);
    CHECK(
        VerQueryValueA(block, "\\StringFileInfo\\040904b0\\ProductVersion", (void**)&text, &size));
    CHECK(strcmp(text, arguments->version) == 0);
    CHECK(
        VerQueryValueA(block, "\\StringFileInfo\\040904b0\\FileDescription", (void**)&text, &size));
    CHECK(text[0] != '\0');
}

int main(int count, char* all[]) {
    Arguments arguments;
    const char* way;
    CHECK(count == 7);
    way = all[1];
    arguments.dll = all[2];
    arguments.prefix = all[3];
    arguments.photograph = all[4];
    arguments.names = all[5];
    arguments.version = all[6];
    if (strcmp(way, "names") == 0) {
        findNames(&arguments);
    } else if (strcmp(way, "version") == 0) {
        readVersion(&arguments);
    } else if (strcmp(way, "cpu") == 0) {
        repeatUnloading(&arguments, false);
    } else if (strcmp(way, "gpu") == 0) {
        repeatUnloading(&arguments, true);
    } else if (strcmp(way, "loaded-cpu") == 0) {
        repeatLoaded(&arguments, false);
    } else if (strcmp(way, "loaded-gpu") == 0) {
        repeatLoaded(&arguments, true);
    } else if (strcmp(way, "plain") == 0) {
        unloadWithoutACall(&arguments);
    } else if (strcmp(way, "unreleased") == 0) {
        unloadWithoutRelease(&arguments);
    } else if (strcmp(way, "kept") == 0) {
        unloadWhileTheEngineRuns(&arguments);
    } else {
        CHECK(strcmp(way, "exits") == 0);
        endWhileTheEngineRuns(&arguments);
    }
    return EXIT_SUCCESS;
}
