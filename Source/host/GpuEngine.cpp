#include "host/GpuEngine.h"

#include <memory>
#include <string>

#include "engine/EngineLog.h"
#include "engine/KelOgreBase.h"
#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/RenderSystemOptions.h"
#include "shaders/Programs.h"

namespace keladjust {

namespace {

// Null if the effect cannot be made; adjustments then run on the CPU.
KelOgreEffectBase* createEffect(KelOgreRenderThread& thread, const char* program) {
    auto* effect = static_cast<KelOgreEffectBase*>(thread.createEffect("KelOgreEffectBase"));
    if (effect == nullptr) return nullptr;
    effect->setShaderSource(program, 1, 1);
    thread.getMaterial(effect);  // compiles, so that the first adjustment need not
    return effect;
}

}  // namespace

bool GpuEngine::isRunning() const {
    return thread != nullptr && thread->isEngineInitialised();
}

bool GpuEngine::canAdjust() const {
    return isRunning() && basicAdjust != nullptr && range != nullptr && lens != nullptr;
}

GpuEngine startGpuEngine(const char* resourcePrefix, const char* pluginPrefix,
                         const char* logPrefix) {
    auto thread = std::make_unique<KelOgreRenderThread>(resourcePrefix, pluginPrefix, logPrefix,
                                                        renderSystemOpenGl);
    GpuEngine engine;
    if (!thread->isEngineInitialised()) return engine;
    engine.basicAdjust = createEffect(*thread, shaders::adjustProgram);
    engine.range = createEffect(*thread, shaders::rangeProgram);
    engine.lens = createEffect(*thread, shaders::lensProgram);
    const std::string combined = std::string(shaders::combinedDeclarations) + shaders::combinedMain;
    engine.combined = createEffect(*thread, combined.c_str());
    engine.thread = thread.release();
    if (!engine.canAdjust()) logMessage("Effects are missing, adjustments run on the CPU");
    return engine;
}

bool isDriverTooOld(const GpuEngine& engine) {
    const KelOgreBase* base = engine.thread->engine();
    if (base == nullptr) return true;
    const Ogre::DriverVersion& version = base->driverVersion();
    logMessage("GL version is: " + version.toString());
    if (version.major <= 2) {
        logMessage(
            "GL version is too low, Program requires OpenGL 2.0 or higherra."
            " Please upgrade the driver of your video card!");
        return true;
    }
    if (version.major == 3 && version.minor < 2) {
        logMessage("Using C algorithm to running!");
        return true;
    }
    return false;
}

void stopGpuEngine(GpuEngine& engine) {
    delete engine.thread;
    engine = {};
}

}  // namespace keladjust
