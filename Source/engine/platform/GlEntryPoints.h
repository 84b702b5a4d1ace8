#ifndef KELADJUST_ENGINE_PLATFORM_GLENTRYPOINTS_H
#define KELADJUST_ENGINE_PLATFORM_GLENTRYPOINTS_H

namespace keladjust::platform {

/// The driver's function of that name; null if it has none. Needs a current context.
void (*glEntryPoint(const char* name))();

}  // namespace keladjust::platform

#endif
