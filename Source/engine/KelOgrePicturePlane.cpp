#include "engine/KelOgrePicturePlane.h"

#include <OgreHardwarePixelBuffer.h>
#include <OgreMaterialManager.h>
#include <OgrePass.h>
#include <OgreRectangle2D.h>
#include <OgreResourceGroupManager.h>
#include <OgreSceneNode.h>
#include <OgreTechnique.h>
#include <OgreTextureManager.h>
#include <OgreTextureUnitState.h>

#include <atomic>

#include "engine/EngineLog.h"
#include "engine/EngineName.h"
#include "engine/KelOgreBase.h"
#include "engine/ManualTexture.h"
#include "engine/PictureRows.h"

using keladjust::engineName;
using keladjust::logCurrentException;
using keladjust::logMessage;

namespace {

std::atomic<std::uint32_t> nextNumber{0};

const std::string& resourceGroup() {
    return Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME;
}

// Draws texels as they are: no light, no depth, no blending, nothing between them.
void setUpPlaneMaterial(const Ogre::MaterialPtr& material) {
    material->setReceiveShadows(false);
    Ogre::Pass* pass = material->getTechnique(0)->getPass(0);
    pass->setLightingEnabled(false);
    pass->setDepthCheckEnabled(false);
    pass->setDepthWriteEnabled(false);
    pass->setCullingMode(Ogre::CULL_NONE);
    pass->setManualCullingMode(Ogre::MANUAL_CULL_NONE);
    pass->setSceneBlending(Ogre::SBT_REPLACE);
    pass->setFog(true);
}

bool isUnit(std::uint32_t unit) {
    if (unit < OGRE_MAX_TEXTURE_LAYERS) return true;
    logMessage("There is no texture unit " + std::to_string(unit));
    return false;
}

[[noreturn]] void raise(const char* message) {
    throw Ogre::InvalidParametersException(Ogre::Exception::ERR_INVALIDPARAMS, message,
                                           "KelOgrePicturePlane::setPictruePlaneImage",
                                           "KelOgrePicturePlane", __LINE__);
}

}  // namespace

KelOgrePicturePlane::KelOgrePicturePlane(bool pixelBufferSwitch)
    : number_(nextNumber++),
      name_(engineName("KelOgrePicturePlane_", number_)),
      materialName_(engineName("PlaneMaterialName_", number_)),
      rectangleName_(engineName("KelOgrePicturePlaneRectange_", number_)),
      material_(materialName_),
      rectangle_(std::make_unique<Ogre::Rectangle2D>(rectangleName_, true)),
      pixelBufferSwitch_(pixelBufferSwitch) {
    setUpPlaneMaterial(material_.material);
    rectangle_->setCorners(-1.0f, 1.0f, 1.0f, -1.0f, false);
    // Whatever the camera, the rectangle is in sight.
    rectangle_->setBoundingBox(Ogre::AxisAlignedBox::BOX_INFINITE);
    rectangle_->setMaterial(material_.material);
}

KelOgrePicturePlane::~KelOgrePicturePlane() {
    try {
        KelOgrePicturePlane::detach();
        rectangle_.reset();
        removeTextures();
    } catch (...) {
        logCurrentException("The picture plane is not taken down in order");
    }
}

std::uint32_t KelOgrePicturePlane::number() const {
    return number_;
}
const std::string& KelOgrePicturePlane::name() const {
    return name_;
}
const std::string& KelOgrePicturePlane::materialName() const {
    return materialName_;
}
const std::string& KelOgrePicturePlane::rectangleName() const {
    return rectangleName_;
}
const Ogre::MaterialPtr& KelOgrePicturePlane::material() const {
    return material_.material;
}
std::string KelOgrePicturePlane::textureName(std::uint32_t unit) const {
    return name_ + "_Texture" + std::to_string(unit);
}
Ogre::TexturePtr KelOgrePicturePlane::texture(std::uint32_t unit) const {
    const auto place = textures_.find(unit);
    return place == textures_.end() ? nullptr : place->second;
}
std::uint32_t KelOgrePicturePlane::textureCount() const {
    return static_cast<std::uint32_t>(textures_.size());
}
std::uint32_t KelOgrePicturePlane::width() const {
    return width_;
}
std::uint32_t KelOgrePicturePlane::height() const {
    return height_;
}
void KelOgrePicturePlane::resize(std::uint32_t width, std::uint32_t height) {
    width_ = width;
    height_ = height;
}
bool KelOgrePicturePlane::pixelBufferSwitch() const {
    return pixelBufferSwitch_;
}
void KelOgrePicturePlane::setPixelBufferSwitch(bool on) {
    pixelBufferSwitch_ = on;
}
Ogre::Rectangle2D* KelOgrePicturePlane::rectangle() const {
    return rectangle_.get();
}
void KelOgrePicturePlane::attachTo(Ogre::SceneNode& node) {
    detach();
    node.attachObject(rectangle_.get());
}
void KelOgrePicturePlane::detach() {
    rectangle_->detachFromParent();
}

bool KelOgrePicturePlane::fitsTexture(std::uint32_t width, std::uint32_t height) const {
    const std::uint32_t maximum = KelOgreBase::maximumTextureSize();
    if (width <= maximum && height <= maximum) return true;
    logMessage("dimension is large max texture size " + std::to_string(maximum) + "of supported");
    return false;
}

bool KelOgrePicturePlane::accepts(const _ImageParam& picture) const {
    if (picture.data == nullptr) {
        logMessage("Image data is NULL!");
        return false;
    }
    if (picture.width == 0 || picture.height == 0) raise("You had not set image's size!");
    if (!fitsTexture(picture.width, picture.height)) return false;
    if (Ogre::PixelUtil::getNumElemBytes(picture.format) == 0) {
        logMessage("Image format is not supported");
        return false;
    }
    return true;
}

bool KelOgrePicturePlane::setPictruePlaneImage(const _ImageParam& picture, std::uint32_t unit) {
    if (!accepts(picture) || !isUnit(unit)) return false;
    constexpr std::uint32_t depth = 1;
    Ogre::TexturePtr target = texture(unit);
    // A texture of another format would take the pixels over, less what that format lacks.
    if (target == nullptr || target->getWidth() != picture.width ||
        target->getHeight() != picture.height || target->getDepth() != depth ||
        target->getDesiredFormat() != picture.format) {
        target = createTexture(unit, picture.width, picture.height, depth, picture.format);
    }
    const Ogre::PixelBox pixels = keladjust::uploadBox(picture, tightRows_);
    target->getBuffer()->blitFromMemory(pixels);
    return true;
}

bool KelOgrePicturePlane::setTexture(const Ogre::TexturePtr& source, std::uint32_t unit) {
    const bool isSizeless = source->getWidth() == 0 || source->getHeight() == 0;
    if (isSizeless || source->getBuffer()->getSizeInBytes() == 0) {
        logMessage("Image data is NULL!");
        if (isSizeless) raise("This texture's size is zero!");
        return false;
    }
    if (!fitsTexture(source->getWidth(), source->getHeight()) || !isUnit(unit)) return false;
    Ogre::TexturePtr target = texture(unit);
    if (target == nullptr || target->getWidth() != source->getWidth() ||
        target->getHeight() != source->getHeight() || target->getDepth() != source->getDepth() ||
        target->getFormat() != source->getFormat()) {
        target = createTexture(unit, source->getWidth(), source->getHeight(), source->getDepth(),
                               source->getFormat());
    }
    Ogre::TexturePtr destination = target;
    source->copyToTexture(destination);
    return true;
}

Ogre::TexturePtr KelOgrePicturePlane::createTexture(std::uint32_t unit, std::uint32_t width,
                                                    std::uint32_t height, std::uint32_t depth,
                                                    Ogre::PixelFormat format) {
    // The old one goes first: a name stands for one texture.
    removeTexture(unit);
    Ogre::Pass* pass = material_.material->getTechnique(0)->getPass(0);
    while (pass->getNumTextureUnitStates() <= unit) pass->createTextureUnitState();
    Ogre::TextureUnitState* state = pass->getTextureUnitState(static_cast<unsigned short>(unit));
    state->setTextureAddressingMode(Ogre::TAM_CLAMP);
    state->setTextureFiltering(Ogre::TFO_NONE);

    // Its place in the table comes first: what is in the engine and not in the table is never
    // removed.
    Ogre::TexturePtr& created = textures_[unit];
    try {
        created = keladjust::createManualTexture(textureName(unit), {width, height, depth, format},
                                                 Ogre::TU_DYNAMIC_WRITE_ONLY);
        state->setTexture(created);
    } catch (...) {
        removeTexture(unit);
        throw;
    }
    return created;
}

void KelOgrePicturePlane::removeTextures() {
    while (!textures_.empty()) removeTexture(textures_.begin()->first);
}

void KelOgrePicturePlane::removeTexture(std::uint32_t unit) {
    const Ogre::TexturePtr old = KelOgrePicturePlane::texture(unit);
    textures_.erase(unit);
    if (old == nullptr) return;
    Ogre::Pass* pass = material_.material->getTechnique(0)->getPass(0);
    pass->getTextureUnitState(static_cast<unsigned short>(unit))->setBlank();
    Ogre::TextureManager::getSingleton().remove(old->getHandle());
}

KelOgrePicturePlane::OwnMaterial::OwnMaterial(const std::string& name)
    : material(Ogre::MaterialManager::getSingleton().create(name, resourceGroup())) {}

KelOgrePicturePlane::OwnMaterial::~OwnMaterial() {
    try {
        Ogre::MaterialManager::getSingleton().remove(material->getHandle());
    } catch (...) {
        logCurrentException("The picture plane's material is not removed");
    }
}
