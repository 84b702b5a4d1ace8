#ifndef KELADJUST_ENGINE_OGREENGINE_H
#define KELADJUST_ENGINE_OGREENGINE_H

#include "engine/EngineModule.h"
#include "engine/KelOgreRenderThread.h"

class KelOgreEffectBase;

namespace keladjust {

/// The engine as the library sees it, made of the render thread and effects of one class.
class OgreEngine final : public EngineModule {
public:
    /// The only one in the module.
    static OgreEngine& instance();

    explicit OgreEngine(
        const char* effectClass = "KelOgreEffectBase",
        KelOgreRenderThread::EngineMaker makeEngine = KelOgreRenderThread::makeKelOgreBase)
        : effectClass_(effectClass), makeEngine_(makeEngine) {}

    bool start(const EngineStart& start, EngineReason& reason) noexcept override;
    void stop() noexcept override;
    bool isRunning() const noexcept override;
    bool hasEffect(std::uint32_t effect) const noexcept override;
    bool readDriver(EngineDriver& driver) const noexcept override;
    bool render(const EngineRender& render, EngineReason& reason) noexcept override;
    bool loadPicture(const char* path, EnginePictureTaker& taker) noexcept override;
    void log(const char* line) noexcept override;

    /// Null while the engine has not been started.
    KelOgreRenderThread* thread() const;
    /// Null if there is none of that number.
    KelOgreEffectBase* effect(std::uint32_t number) const;

private:
    struct Running;

    const char* effectClass_;
    KelOgreRenderThread::EngineMaker makeEngine_;
    /// Not ended with this object: a program that ends without stopping the engine must not tear it
    /// down among other libraries that are gone already.
    Running* running_ = nullptr;
};

}  // namespace keladjust

#endif
