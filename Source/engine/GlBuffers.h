#ifndef KELADJUST_ENGINE_GLBUFFERS_H
#define KELADJUST_ENGINE_GLBUFFERS_H

#include "engine/platform/OpenGl.h"

namespace keladjust {

/// The driver's functions for buffer objects, which are found by name.
struct GlBuffers {
    PFNGLGENBUFFERSPROC genBuffers = nullptr;
    PFNGLDELETEBUFFERSPROC deleteBuffers = nullptr;
    PFNGLISBUFFERPROC isBuffer = nullptr;
    PFNGLBINDBUFFERPROC bindBuffer = nullptr;
    PFNGLBUFFERDATAPROC bufferData = nullptr;
    PFNGLMAPBUFFERPROC mapBuffer = nullptr;
    PFNGLUNMAPBUFFERPROC unmapBuffer = nullptr;

    /// Looks all of them up under their own names, or else all under those of the extension.
    /// @return false if neither set is complete
    bool load();

private:
    bool load(const char* suffix);
};

}  // namespace keladjust

#endif
