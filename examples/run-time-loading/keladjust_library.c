#include "keladjust_library.h"

#include <string.h>

/* GetProcAddress returns one type of function for all; C has no cast between them that every
   compiler takes without a warning. */
static bool find(HMODULE module, const char* name, void* function) {
    const FARPROC address = GetProcAddress(module, name);
    memcpy(function, &address, sizeof address);
    return address != NULL;
}

bool loadKeladjust(KeladjustLibrary* library, const char* path) {
    /* By its full path: a bare name would be looked for in folders that anyone may write to. */
    char fullPath[MAX_PATH];
    HMODULE module;
    const DWORD length = GetFullPathNameA(path, sizeof fullPath, fullPath, NULL);
    if (length == 0 || length >= sizeof fullPath) return false;
    module = LoadLibraryA(fullPath);
    if (module == NULL) return false;
    library->module = module;
    if (find(module, "initOgreRunTime", &library->initOgreRunTime) &&
        find(module, "releaseOgre", &library->releaseOgre) &&
        find(module, "setLogPath", &library->setLogPath) &&
        find(module, "createCxImage", &library->createCxImage) &&
        find(module, "releaseCxImage", &library->releaseCxImage) &&
        find(module, "doAdjust", &library->doAdjust) &&
        find(module, "getLut3dData", &library->getLut3dData) &&
        find(module, "writeLut3DFile", &library->writeLut3DFile)) {
        return true;
    }
    unloadKeladjust(library);
    return false;
}

void unloadKeladjust(KeladjustLibrary* library) {
    FreeLibrary(library->module);
    library->module = NULL;
}
