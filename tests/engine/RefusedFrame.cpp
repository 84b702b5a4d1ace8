// Frames that the engine refuses to render, because somebody who listens to it says so.

#include <OgreFrameListener.h>
#include <OgreRoot.h>
#include <OgreSceneManager.h>

#include <string>
#include <vector>

#include "engine/RunningEngine.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::invertProgram;
using keladjust::test::RunningEngine;

/// Counts how often it is told that the window has been closed.
class ClosingEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class ClosingEffect";
    void windowClosed() override {
        ++closings;
        KelOgreEffectBase::windowClosed();
    }
    int closings = 0;
};

/// Ends frames at their start, or once they have been rendered.
class Refusal : public Ogre::FrameListener {
public:
    bool frameStarted(const Ogre::FrameEvent&) override { return !atStart; }
    bool frameRenderingQueued(const Ogre::FrameEvent&) override { return !onceRendered; }
    bool atStart = false;
    bool onceRendered = false;
};

class RefusedFrame : public RunningEngine {
protected:
    void SetUp() override {
        RunningEngine::SetUp();
        effect = static_cast<ClosingEffect*>(effectWith(invertProgram, "ClosingEffect"));
        ASSERT_NE(effect, nullptr);
        before = picture.fillRandom(1).bytes();
        render(*effect, picture);
        ASSERT_NE(picture.bytes(), before);
        before = picture.bytes();
        onThread([this] { Ogre::Root::getSingleton().addFrameListener(&refusal); });
    }
    void TearDown() override {
        if (thread->isEngineInitialised()) {
            onThread([this] { Ogre::Root::getSingleton().removeFrameListener(&refusal); });
            thread->removeEffect(effect, false);
        }
        RunningEngine::TearDown();
    }
    /// The effect's camera, by its name.
    bool hasCamera() {
        const std::string number =
            effect->renderTexture()->getName().substr(std::string("RttTex").size());
        bool found = false;
        onThread([&] {
            for (const auto& [name, scene] : Ogre::Root::getSingleton().getSceneManagers()) {
                found = found || scene->hasCamera("PlayerCam_" + number);
            }
        });
        return found;
    }

    DYN_CLASS::CFactory<ClosingEffect> factory;
    DYN_CLASS::CFactoryManager place{&factory};
    Refusal refusal;
    ClosingEffect* effect = nullptr;
    HostPicture picture{7, 5, 32, IMAGE_FORMAT_BGRA};
    std::vector<std::uint8_t> before;
};

TEST_F(RefusedFrame, SparesThePictureAndLetsGoOfTheCamera) {
    for (bool Refusal::*const moment : {&Refusal::atStart, &Refusal::onceRendered}) {
        effect->closings = 0;
        EXPECT_TRUE(hasCamera());
        refusal.*moment = true;
        render(*effect, picture);
        refusal.*moment = false;
        EXPECT_EQ(picture.bytes(), before);
        EXPECT_TRUE(picture.guardsIntact());
        EXPECT_EQ(effect->closings, 1);
        EXPECT_FALSE(hasCamera());
        EXPECT_NE(effect->failure(), "");
        EXPECT_TRUE(log.has("The picture is not rendered and stays as it was"));

        // The window is there all the same: the engine goes on, and the next frame is rendered.
        EXPECT_FALSE(effect->isStopped());
        ASSERT_TRUE(thread->isEngineInitialised());
        render(*effect, picture);
        EXPECT_NE(picture.bytes(), before);
        EXPECT_EQ(effect->failure(), "");
        before = picture.bytes();
        log.clear();
    }
}

}  // namespace
