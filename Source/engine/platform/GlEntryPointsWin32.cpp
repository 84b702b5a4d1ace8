#include <windows.h>

#include "engine/platform/GlEntryPoints.h"

namespace keladjust::platform {

void (*glEntryPoint(const char* name))() {
    const auto found = reinterpret_cast<void (*)()>(wglGetProcAddress(name));
    return isGlEntryPoint(reinterpret_cast<std::intptr_t>(found)) ? found : nullptr;
}

}  // namespace keladjust::platform
