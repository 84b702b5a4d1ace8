#ifndef KELADJUST_ENGINE_GLERRORS_H
#define KELADJUST_ENGINE_GLERRORS_H

namespace keladjust {

/// What happened to the driver since it was last asked. From either of the failures on, nothing
/// that it delivers means anything.
enum class DriverState { fine, outOfMemory, contextLost };

/// Takes all pending errors of OpenGL. Others than these failures are not looked at: the engine, or
/// a host with a context of its own, may have left them behind.
DriverState takeDriverState();

}  // namespace keladjust

#endif
