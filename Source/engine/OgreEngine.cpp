#include "engine/OgreEngine.h"

#include <OgreImage.h>

#include <memory>
#include <string>
#include <vector>

#include "engine/EngineLog.h"
#include "engine/KelOgreBase.h"
#include "engine/KelOgreEffectBase.h"
#include "engine/PixelFormats.h"
#include "engine/RenderSystemOptions.h"
#include "platform/Version.h"

namespace keladjust {

namespace {

// What a render may take; nobody asks whether it did.
constexpr std::uint32_t evaluateMilliseconds = 20;

}  // namespace

/// The thread, and the effects that live on it; null where one could not be made.
struct OgreEngine::Running {
    Running(const EngineStart& start, KelOgreRenderThread::EngineMaker makeEngine)
        : thread(start.resourcesPrefix, start.pluginsPrefix, start.logPrefix, renderSystemOpenGl,
                 makeEngine) {}

    void makeEffect(const char* effectClass, const char* program) {
        auto* effect = static_cast<KelOgreEffectBase*>(thread.createEffect(effectClass));
        effects.push_back(effect);
        if (effect == nullptr) return;
        effect->setShaderSource(program, 1, 1);
        thread.getMaterial(effect);  // compiles, so that the first render need not
    }

    KelOgreRenderThread thread;
    std::vector<KelOgreEffectBase*> effects;
};

OgreEngine& OgreEngine::instance() {
    static OgreEngine engine;
    return engine;
}

bool OgreEngine::start(const EngineStart& start, EngineReason& reason) noexcept {
    stop();  // it may have stopped by itself
    try {
        auto running = std::make_unique<Running>(start, makeEngine_);
        if (!running->thread.isEngineInitialised()) {
            reason.set(running->thread.whyNotStarted());
            return false;
        }
        for (std::uint32_t i = 0; i < start.programCount; ++i) {
            running->makeEffect(effectClass_, start.programs[i]);
        }
        running_ = running.release();
        return true;
    } catch (...) {
        // Out of memory or handles.
        reason.set(currentExceptionText());
        return false;
    }
}

void OgreEngine::stop() noexcept {
    delete running_;
    running_ = nullptr;
}

bool OgreEngine::isRunning() const noexcept {
    return running_ != nullptr && running_->thread.isEngineInitialised();
}

bool OgreEngine::hasEffect(std::uint32_t number) const noexcept {
    return isRunning() && effect(number) != nullptr;
}

bool OgreEngine::readDriver(EngineDriver& driver) const noexcept {
    const KelOgreBase* base = isRunning() ? running_->thread.engine() : nullptr;
    if (base == nullptr) return false;
    const Ogre::DriverVersion& version = base->driverVersion();
    driver = {version.major, version.minor, version.release, version.build, base->isHardware()};
    return true;
}

bool OgreEngine::render(const EngineRender& render, EngineReason& reason) noexcept {
    try {
        KelOgreEffectBase* const pass = isRunning() ? effect(render.effect) : nullptr;
        if (pass == nullptr) {
            reason.set(isRunning() ? "The effect is missing" : "The engine has stopped");
            return false;
        }
        pass->setInputImage(render.pixels, render.width, render.height, 0,
                            enginePixelFormat(render.format));
        pass->setRenderSize(render.width, render.height);
        for (std::uint32_t i = 0; i < render.intCount; ++i) {
            pass->setParameter(fragmentProgram, render.ints[i].name, render.ints[i].value);
        }
        for (std::uint32_t i = 0; i < render.floatCount; ++i) {
            pass->setParameter(fragmentProgram, render.floats[i].name, render.floats[i].value);
        }
        std::string failure;
        if (running_->thread.render(pass, nullptr, render.pixels, render.bitsPerPixel / 8, nullptr,
                                    evaluateMilliseconds, &failure) == 0 &&
            failure.empty()) {
            failure = "The engine has stopped";
        }
        reason.set(failure);
        return failure.empty();
    } catch (...) {
        reason.set(currentExceptionText());
        return false;
    }
}

bool OgreEngine::loadPicture(const char* path, EnginePictureTaker& taker) noexcept {
    try {
        if (!isRunning()) return false;
        return running_->thread.loadPicture(path, [&taker](const Ogre::Image& image) {
            taker.take({image.getData(), image.getWidth(), image.getHeight(), image.getBPP(),
                        image.getSize(), imageFormatOf(image.getFormat())});
        }) != 0;
    } catch (...) {
        return false;
    }
}

void OgreEngine::log(const char* line) noexcept {
    try {
        logMessage(line);
    } catch (...) {
        // A line that cannot be written is not worth more than itself.
    }
}

KelOgreRenderThread* OgreEngine::thread() const {
    return running_ != nullptr ? &running_->thread : nullptr;
}

KelOgreEffectBase* OgreEngine::effect(std::uint32_t number) const {
    return running_ != nullptr && number < running_->effects.size() ? running_->effects[number]
                                                                    : nullptr;
}

}  // namespace keladjust

const keladjust::EngineModuleEntry* keladjustEngineModule() {
    static const keladjust::EngineModuleEntry entry{keladjust::versionText,
                                                    &keladjust::OgreEngine::instance()};
    return &entry;
}
