#include "engine/GlErrors.h"

#include "engine/platform/OpenGl.h"

namespace keladjust {

bool ranOutOfMemory() {
    // Without a working context there is no end of them.
    constexpr int manyErrors = 16;
    bool ranOut = false;
    for (int i = 0; i < manyErrors; ++i) {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR) break;
        ranOut = ranOut || error == GL_OUT_OF_MEMORY;
    }
    return ranOut;
}

}  // namespace keladjust
