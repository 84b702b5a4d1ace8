/* keladjust.dll, loaded while the program runs: no import library is needed to build. */
#ifndef KELADJUST_LIBRARY_H
#define KELADJUST_LIBRARY_H

#include <windows.h>
#include <keladjust/keladjust.h>

typedef struct KeladjustLibrary {
    HMODULE module;
    bool (*initOgreRunTime)(const char* resourcePrefix, const char* pluginPrefix);
    void (*releaseOgre)(void);
    const char* (*setLogPath)(const char* path);
    CxImage* (*createCxImage)(unsigned char** ppBits, unsigned int width, unsigned int height,
                              unsigned int bpp, _ImagePixelFormat format);
    void (*releaseCxImage)(CxImage* image);
    CxImage* (*doAdjust)(CxImage* image, _AdjustParam parameters);
    KeladjustResult (*keladjustRun)(CxImage* image, const _AdjustParam* record, size_t recordBytes,
                                    KeladjustRun* run);
    const char* (*keladjustVersion)(void);
    float* (*getLut3dData)(_AdjustParam parameters);
    bool (*writeLut3DFile)(_AdjustParam parameters, const char* path);
} KeladjustLibrary;

/* Loads the DLL, which needs no other; initOgreRunTime() looks for the engine in the folder in
   which it lies. False if it cannot be loaded or lacks a function; nothing is loaded then. */
bool loadKeladjust(KeladjustLibrary* library, const char* path);

/* Call releaseOgre first if the engine may be running: its thread would keep the DLL. */
void unloadKeladjust(KeladjustLibrary* library);

#endif
