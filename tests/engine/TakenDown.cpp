// What is taken down in the middle of a failure: an exception there must not end the process, as it
// would if it left a destructor.

#include <OgreMaterialManager.h>
#include <OgreMovableObject.h>
#include <OgreRectangle2D.h>
#include <OgreRoot.h>
#include <OgreSceneManager.h>
#include <OgreSceneNode.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "engine/KelOgrePicturePlane.h"
#include "engine/RunningEngine.h"

namespace {

using keladjust::test::RunningEngine;

class TakenDown : public RunningEngine {};

/// Fails when the object that it listens to leaves its node.
struct FailsWhenDetached : Ogre::MovableObject::Listener {
    void objectDetached(Ogre::MovableObject*) override {
        throw std::runtime_error("detached in vain");
    }
};

TEST_F(TakenDown, APlaneThatDoesNotLeaveItsNodeIsGoneAllTheSame) {
    onThread([&] {
        Ogre::SceneManager* const scene = Ogre::Root::getSingleton().createSceneManager();
        FailsWhenDetached listener;
        auto plane = std::make_unique<KelOgrePicturePlane>(false);
        const std::string material = plane->materialName();
        plane->rectangle()->setListener(&listener);
        plane->attachTo(*scene->getRootSceneNode());
        ASSERT_NE(Ogre::MaterialManager::getSingleton().getByName(material), nullptr);

        plane.reset();

        EXPECT_EQ(scene->getRootSceneNode()->numAttachedObjects(), 0u);
        EXPECT_EQ(Ogre::MaterialManager::getSingleton().getByName(material), nullptr);
        Ogre::Root::getSingleton().destroySceneManager(scene);
    });
    EXPECT_TRUE(log.has("The picture plane is not taken down in order")) << log.all();
    EXPECT_TRUE(log.has("detached in vain")) << log.all();
}

}  // namespace
