#include "engine/RunningEngine.h"

namespace keladjust::test {

void RunningEngine::SetUp() {
    thread = std::make_unique<KelOgreRenderThread>(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG,
                                                   nullptr, 0u);
    ASSERT_TRUE(thread->isEngineInitialised()) << log.all();
    hook_ = static_cast<HookEffect*>(thread->createEffect("HookEffect"));
    ASSERT_NE(hook_, nullptr);
}

void RunningEngine::TearDown() {
    thread.reset();
}

void RunningEngine::onThread(const std::function<void()>& work) {
    hook_->onProcess = [&work](auto...) { work(); };
    thread->render(hook_, nullptr, nullptr, 4, nullptr, 20);
}

KelOgreEffectBase* RunningEngine::effectWith(const char* program, const char* className) {
    auto* effect = static_cast<KelOgreEffectBase*>(thread->createEffect(className));
    if (effect != nullptr) effect->setShaderSource(program, 1, 1);
    return effect;
}

void RunningEngine::setPicture(KelOgreEffectBase& effect, HostPicture& picture) {
    CxImage& image = *picture.image();
    effect.setInputImage(image.GetBits(), image.GetWidth(), image.GetHeight(), 0,
                         enginePixelFormat(image.getFormat()));
    effect.setRenderSize(image.GetWidth(), image.GetHeight());
}

int RunningEngine::render(KelOgreEffectBase& effect, HostPicture& picture) {
    setPicture(effect, picture);
    return renderPicture(effect, picture);
}

int RunningEngine::renderPicture(KelOgreEffectBase& effect, HostPicture& picture) {
    CxImage& image = *picture.image();
    return thread->render(&effect, nullptr, image.GetBits(), image.GetBpp() / 8, nullptr, 20);
}

std::uint32_t enginePixelFormat(_ImagePixelFormat format) {
    switch (format) {
        case IMAGE_FORMAT_GRAY:
            return Ogre::PF_L8;
        case IMAGE_FORMAT_RGB:
            return Ogre::PF_B8G8R8;
        case IMAGE_FORMAT_BGR:
            return Ogre::PF_R8G8B8;
        case IMAGE_FORMAT_RGBA:
            return Ogre::PF_A8B8G8R8;
        case IMAGE_FORMAT_BGRA:
            return Ogre::PF_A8R8G8B8;
        default:
            return Ogre::PF_UNKNOWN;
    }
}

}  // namespace keladjust::test
