#ifndef KELADJUST_HOST_GPUENGINE_H
#define KELADJUST_HOST_GPUENGINE_H

class KelOgreEffectBase;
class KelOgreRenderThread;

namespace keladjust {

/// The running engine as the host interface sees it: the render thread and the effects that live on
/// it. All null while there is none.
struct GpuEngine {
    KelOgreRenderThread* thread = nullptr;
    KelOgreEffectBase* basicAdjust = nullptr;
    KelOgreEffectBase* range = nullptr;
    KelOgreEffectBase* lens = nullptr;
    KelOgreEffectBase* combined = nullptr;

    /// True if the engine is up. It may also have stopped by itself, and the effects with it.
    bool isRunning() const;
    /// True if every effect that an adjustment asks for is there.
    bool canAdjust() const;
};

/// Starts the engine and gives each effect its program. A null thread tells that it did not come
/// up.
GpuEngine startGpuEngine(const char* resourcePrefix, const char* pluginPrefix,
                         const char* logPrefix);

/// True if the graphics driver is too old for the GPU path; its version is written to the log, and
/// what follows from it.
bool isDriverTooOld(const GpuEngine& engine);

/// Stops the engine, effects and all.
void stopGpuEngine(GpuEngine& engine);

}  // namespace keladjust

#endif
