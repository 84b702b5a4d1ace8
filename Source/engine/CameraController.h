#ifndef KELADJUST_ENGINE_CAMERACONTROLLER_H
#define KELADJUST_ENGINE_CAMERACONTROLLER_H

#include <OgreCamera.h>
#include <OgreSceneNode.h>
#include <OgreVector.h>

namespace keladjust {

/// Moves a camera, which stays its scene's, by way of the node that it hangs on.
class CameraController {
public:
    explicit CameraController(Ogre::SceneNode& node) : node_(node) {}

    void place(const Ogre::Vector3& position, const Ogre::Vector3& target) {
        node_.setPosition(position);
        node_.lookAt(target, Ogre::Node::TS_WORLD);
    }

private:
    Ogre::SceneNode& node_;
};

}  // namespace keladjust

#endif
