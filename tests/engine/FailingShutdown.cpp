// A root that does not shut down. In a process of its own: what is left of it stays until the end.

#include <OgrePlugin.h>
#include <OgreRoot.h>

#include <stdexcept>
#include <string>

#include "engine/RunningEngine.h"

namespace {

using keladjust::test::RunningEngine;

/// Such as a host may have installed.
struct FailsAtShutdown : Ogre::Plugin {
    const Ogre::String name = "FailsAtShutdown";

    const Ogre::String& getName() const override { return name; }
    void install() override {}
    void initialise() override {}
    void shutdown() override { throw std::runtime_error("shut down in vain"); }
    void uninstall() override {}
};

class FailingShutdown : public RunningEngine {
protected:
    // Outlives the root, which is never destroyed.
    inline static FailsAtShutdown plugin;
};

TEST_F(FailingShutdown, CostsTheEngineAndNotTheProcess) {
    onThread([] { Ogre::Root::getSingleton().installPlugin(&plugin); });

    thread.reset();
    EXPECT_TRUE(log.has("The engine does not stop in order")) << log.all();
    EXPECT_TRUE(log.has("shut down in vain")) << log.all();

    // What is left of the first is an engine that a second start has not made.
    KelOgreRenderThread second(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG, nullptr, 0u);
    EXPECT_FALSE(second.isEngineInitialised());
    EXPECT_NE(second.whyNotStarted().find("The host runs an engine of its own"), std::string::npos)
        << second.whyNotStarted();
}

}  // namespace
