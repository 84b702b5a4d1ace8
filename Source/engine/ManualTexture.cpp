#include "engine/ManualTexture.h"

#include <OgreResourceGroupManager.h>
#include <OgreTextureManager.h>

namespace keladjust {

Ogre::TexturePtr createManualTexture(const std::string& name, const TextureShape& shape,
                                     int usage) {
    const std::string& group = Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME;
    auto& textures = Ogre::TextureManager::getSingleton();
    try {
        return textures.createManual(
            name, group, shape.depth == 1 ? Ogre::TEX_TYPE_2D : Ogre::TEX_TYPE_3D, shape.width,
            shape.height, shape.depth, 0, shape.format, usage, nullptr, false, 0);
    } catch (...) {
        // The engine has entered the name before it asks the driver.
        if (textures.resourceExists(name, group)) textures.remove(name, group);
        throw;
    }
}

}  // namespace keladjust
