#include "engine/GlErrors.h"

#include "engine/platform/OpenGl.h"

namespace keladjust {

DriverState takeDriverState() {
    // Without a working context there is no end of them.
    constexpr int manyErrors = 16;
    // Of ARB_robustness, which the headers of some systems lack.
    constexpr GLenum contextLost = 0x0507;
    DriverState state = DriverState::fine;
    for (int i = 0; i < manyErrors; ++i) {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR) break;
        if (error == contextLost) return DriverState::contextLost;
        if (error == GL_OUT_OF_MEMORY) state = DriverState::outOfMemory;
    }
    return state;
}

}  // namespace keladjust
