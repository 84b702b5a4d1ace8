#include <windows.h>

#include "engine/platform/GlEntryPoints.h"

namespace keladjust::platform {

void (*glEntryPoint(const char* name))() {
    return reinterpret_cast<void (*)()>(wglGetProcAddress(name));
}

}  // namespace keladjust::platform
