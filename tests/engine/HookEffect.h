#ifndef KELADJUST_TESTS_ENGINE_HOOKEFFECT_H
#define KELADJUST_TESTS_ENGINE_HOOKEFFECT_H

#include <functional>

#include "engine/EffectFactory.h"
#include "engine/KelEffectBase.h"

namespace keladjust::test {

/// Runs what a test wants to happen on the render thread, inside the commands.
class HookEffect : public KelEffectBase {
public:
    static constexpr const char* typeName = "class HookEffect";

    std::function<void(unsigned char*, unsigned char*, std::uint32_t)> onProcess;
    std::function<void(_ImageParam*, unsigned char*, std::uint32_t)> onReadResult;
    std::function<Ogre::MaterialPtr()> onGetMaterial;
    std::function<void(const void*)> onSetShaderParameters;

    void process(unsigned char* output, unsigned char* input, std::uint32_t bytes) override {
        if (onProcess) onProcess(output, input, bytes);
    }
    void readResult(_ImageParam* result, unsigned char* input, std::uint32_t bytes) override {
        if (onReadResult) onReadResult(result, input, bytes);
    }
    Ogre::MaterialPtr getMaterial() override { return onGetMaterial ? onGetMaterial() : nullptr; }
    void setShaderParameters(const void* parameters) override {
        if (onSetShaderParameters) onSetShaderParameters(parameters);
    }
    void setStopped(bool stopped) { stopped_ = stopped; }
};

/// Makes HookEffects while it lives.
class HookFactory {
    DYN_CLASS::CFactory<HookEffect> factory_;
    DYN_CLASS::CFactoryManager place_{&factory_};
};

}  // namespace keladjust::test

#endif
