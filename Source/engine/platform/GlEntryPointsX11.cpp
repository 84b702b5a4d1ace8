#include <GL/glx.h>

#include "engine/platform/GlEntryPoints.h"

namespace keladjust::platform {

void (*glEntryPoint(const char* name))() {
    return glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name));
}

}  // namespace keladjust::platform
