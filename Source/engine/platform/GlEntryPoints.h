#ifndef KELADJUST_ENGINE_PLATFORM_GLENTRYPOINTS_H
#define KELADJUST_ENGINE_PLATFORM_GLENTRYPOINTS_H

#include <cstdint>

namespace keladjust::platform {

/// The driver's function of that name; null if it has none. Needs a current context.
void (*glEntryPoint(const char* name))();

/// False for what drivers give in place of a function that they lack: null under all systems, small
/// numbers and -1 from some under Windows.
constexpr bool isGlEntryPoint(std::intptr_t address) {
    return address < -1 || address > 3;
}

}  // namespace keladjust::platform

#endif
