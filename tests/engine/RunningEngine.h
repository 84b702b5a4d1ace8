#ifndef KELADJUST_TESTS_ENGINE_RUNNINGENGINE_H
#define KELADJUST_TESTS_ENGINE_RUNNINGENGINE_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "engine/HookEffect.h"
#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/LogCapture.h"
#include "support/HostPicture.h"

namespace keladjust::test {

/// Programs whose results are known: the picture as it is, and its negative.
inline constexpr const char* copyProgram =
    "uniform sampler2D Sample; varying vec2 textureCoord;"
    "void main() { gl_FragColor = texture2D(Sample, textureCoord); }";
inline constexpr const char* invertProgram =
    "uniform sampler2D Sample; varying vec2 textureCoord;"
    "void main() { vec4 c = texture2D(Sample, textureCoord);"
    " gl_FragColor = vec4(1.0 - c.rgb, c.a); }";

/// The real engine, on the display that the test runs on.
class RunningEngine : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs `work` on the render thread.
    void onThread(const std::function<void()>& work);
    /// A new effect with that fragment program.
    KelOgreEffectBase* effectWith(const char* program, const char* className = "KelOgreEffectBase");
    /// One pass over the picture, in place. @return what the render thread says
    int render(KelOgreEffectBase& effect, HostPicture& picture);
    /// The same in its two steps.
    static void setPicture(KelOgreEffectBase& effect, HostPicture& picture);
    int renderPicture(KelOgreEffectBase& effect, HostPicture& picture);

    LogCapture log;
    HookFactory hooks;
    std::unique_ptr<KelOgreRenderThread> thread;

private:
    HookEffect* hook_ = nullptr;
};

/// What an effect is told of a picture's format.
std::uint32_t enginePixelFormat(_ImagePixelFormat format);

}  // namespace keladjust::test

#endif
