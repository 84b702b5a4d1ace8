#ifndef KELADJUST_HOST_GPUENGINE_H
#define KELADJUST_HOST_GPUENGINE_H

#include <cstdint>

#include "engine/EngineModule.h"
#include "host/EngineFile.h"

namespace keladjust::platform {
class ModuleReference;
}

namespace keladjust {

/// The engine's effects by number.
enum GpuEffect : std::uint32_t { basicAdjustEffect, rangeEffect, lensEffect, combinedEffect };

/// The running engine as the host interface sees it; all null while there is none. Not ended with
/// this object: a program that ends without stopping the engine must not tear it down among other
/// libraries that are gone already.
struct GpuEngine {
    EngineFile file;
    /// Keeps the library loaded, which alone knows how to stop the engine.
    platform::ModuleReference* library = nullptr;

    /// True if the engine is up. It may also have stopped by itself, and the effects with it.
    bool isRunning() const;
    /// True if every effect that an adjustment asks for is there.
    bool canAdjust() const;
};

/// Starts the engine and gives each effect its program.
/// @param reason set to why it did not come up, or cannot adjust pictures
/// @return an engine that does not run, if it did not come up
/// @throws std::bad_alloc, no engine being left running
GpuEngine startGpuEngine(const char* resourcePrefix, const char* pluginPrefix,
                         const char* logPrefix, EngineReason& reason);

/// True, and why, if the graphics driver is too old for the GPU path; its version is written to the
/// log, and what follows from it.
bool isDriverTooOld(const GpuEngine& engine, EngineReason& reason) noexcept;

/// Stops the engine, effects and all.
void stopGpuEngine(GpuEngine& engine) noexcept;

}  // namespace keladjust

#endif
