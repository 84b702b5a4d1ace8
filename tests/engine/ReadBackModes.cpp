// How effects read back on graphics cards of other makers and abilities than that of the machine at
// hand, which the tests make up.

#include <OgreRenderSystem.h>
#include <OgreRenderSystemCapabilities.h>
#include <OgreRoot.h>

#include <functional>
#include <utility>
#include <vector>

#include "engine/RunningEngine.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::invertProgram;
using keladjust::test::RunningEngine;

/// Changes what the render system says of the card, once it has found out, while this lives.
class MadeUpCard : private Ogre::RenderSystem::Listener {
public:
    using Change = std::function<void(Ogre::RenderSystemCapabilities&)>;

    explicit MadeUpCard(Change change) : change_(std::move(change)) {
        Ogre::RenderSystem::setSharedListener(this);
    }
    ~MadeUpCard() override { Ogre::RenderSystem::setSharedListener(nullptr); }

private:
    void eventOccurred(const Ogre::String& event, const Ogre::NameValuePairList*) override {
        if (event != "RenderSystemCapabilitiesCreated") return;
        change_(*Ogre::Root::getSingleton().getRenderSystem()->getMutableCapabilities());
    }
    Change change_;
};

class ReadBackModes : public RunningEngine {
protected:
    void SetUp() override {}  // each test starts the engine on a card of its own

    void startOn(MadeUpCard::Change change) {
        const MadeUpCard card(std::move(change));
        RunningEngine::SetUp();
    }
    /// A new effect renders what it should, in that mode, its uploads through buffers or not.
    void expectRenders(KelOgreEffectBase::ReadBackMode mode, bool throughBuffers) {
        ASSERT_NE(thread, nullptr);
        KelOgreEffectBase& effect = *effectWith(invertProgram);
        EXPECT_EQ(effect.readBackMode(), mode);
        for (const auto& [bpp, format] :
             {std::pair{32u, IMAGE_FORMAT_BGRA}, {24u, IMAGE_FORMAT_RGB}}) {
            HostPicture picture(5, 3, bpp, format);
            const auto before = picture.fillRandom(1).bytes();
            render(effect, picture);
            for (const std::size_t byte : {0, 1, 2}) {
                EXPECT_EQ(picture.bytes()[byte], 255 - before[byte]) << log.all();
            }
            EXPECT_TRUE(picture.guardsIntact());
        }
        EXPECT_EQ(effect.picturePlane()->pixelBufferSwitch(), throughBuffers);
    }
};

TEST_F(ReadBackModes, GoThroughABufferWhereTheCardCan) {
    startOn([](Ogre::RenderSystemCapabilities& card) {
        card.setVendor(Ogre::GPU_NVIDIA);
        card.setCapability(Ogre::RSC_PBUFFER);
    });
    EXPECT_FALSE(thread->engine()->isIntelGpu());
    EXPECT_TRUE(thread->engine()->isPixelBufferCapable());
    expectRenders(KelOgreEffectBase::readBackThroughBuffer, true);
}

TEST_F(ReadBackModes, GoDirectlyOnIntelsCards) {
    startOn([](Ogre::RenderSystemCapabilities& card) {
        card.setVendor(Ogre::GPU_INTEL);
        card.setCapability(Ogre::RSC_PBUFFER);
    });
    EXPECT_TRUE(thread->engine()->isIntelGpu());
    EXPECT_TRUE(thread->engine()->isPixelBufferCapable());
    expectRenders(KelOgreEffectBase::readBackDirectly, false);
}

TEST_F(ReadBackModes, GoDirectlyWhereTheCardHasNoPixelBuffers) {
    startOn([](Ogre::RenderSystemCapabilities& card) {
        card.setVendor(Ogre::GPU_NVIDIA);
        card.unsetCapability(Ogre::RSC_PBUFFER);
    });
    EXPECT_FALSE(thread->engine()->isIntelGpu());
    EXPECT_FALSE(thread->engine()->isPixelBufferCapable());
    expectRenders(KelOgreEffectBase::readBackDirectly, false);
}

}  // namespace
