#include "engine/GlBuffers.h"

#include <string>

#include "engine/platform/GlEntryPoints.h"

namespace keladjust {

namespace {

template <class Function>
bool find(Function& function, const char* name, const char* suffix) {
    function =
        reinterpret_cast<Function>(platform::glEntryPoint((std::string(name) + suffix).c_str()));
    return function != nullptr;
}

}  // namespace

bool GlBuffers::load() {
    return load("") || load("ARB");
}

bool GlBuffers::load(const char* suffix) {
    return find(genBuffers, "glGenBuffers", suffix) &&
           find(deleteBuffers, "glDeleteBuffers", suffix) && find(isBuffer, "glIsBuffer", suffix) &&
           find(bindBuffer, "glBindBuffer", suffix) && find(bufferData, "glBufferData", suffix) &&
           find(mapBuffer, "glMapBuffer", suffix) && find(unmapBuffer, "glUnmapBuffer", suffix);
}

}  // namespace keladjust
