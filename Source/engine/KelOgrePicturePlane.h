#ifndef KELADJUST_ENGINE_KELOGREPICTUREPLANE_H
#define KELADJUST_ENGINE_KELOGREPICTUREPLANE_H

#include <OgreMaterial.h>
#include <OgreTexture.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/EffectRecords.h"

namespace Ogre {
class Rectangle2D;
class SceneNode;
}  // namespace Ogre

/// The rectangle that fills the render texture, with the pictures that it shows: one texture for
/// each input unit, kept from call to call while the pictures' size and format stay the same.
class KelOgrePicturePlane {
public:
    explicit KelOgrePicturePlane(bool pixelBufferSwitch);
    virtual ~KelOgrePicturePlane();
    KelOgrePicturePlane(const KelOgrePicturePlane&) = delete;
    KelOgrePicturePlane& operator=(const KelOgrePicturePlane&) = delete;

    virtual std::uint32_t number() const;
    virtual const std::string& name() const;
    virtual const std::string& materialName() const;
    virtual const std::string& rectangleName() const;
    virtual const Ogre::MaterialPtr& material() const;
    virtual std::string textureName(std::uint32_t unit) const;
    /// Null if there is none.
    virtual Ogre::TexturePtr texture(std::uint32_t unit) const;
    virtual std::uint32_t textureCount() const;
    /// Size of the picture.
    virtual std::uint32_t width() const;
    virtual std::uint32_t height() const;
    virtual void resize(std::uint32_t width, std::uint32_t height);
    /// Whether uploads may go through pixel buffer objects; the engine picks the way.
    virtual bool pixelBufferSwitch() const;
    virtual void setPixelBufferSwitch(bool on);
    virtual Ogre::Rectangle2D* rectangle() const;
    virtual void attachTo(Ogre::SceneNode& node);
    virtual void detach();

    /// True if the picture can be uploaded; the reason why not is in the log.
    /// @throws Ogre::Exception if it has no size
    bool accepts(const _ImageParam& picture) const;
    /// Brings the picture's pixels into the texture of that unit.
    /// @return false, and the reason in the log, if the picture is refused
    /// @throws Ogre::Exception if it has no size
    bool setPictruePlaneImage(const _ImageParam& picture, std::uint32_t unit);
    /// Copies another texture into the texture of that unit; refusals as before.
    bool setTexture(const Ogre::TexturePtr& source, std::uint32_t unit);
    /// The next upload makes new ones.
    void removeTextures();

private:
    /// A material that the engine knows while this object lives.
    struct OwnMaterial {
        explicit OwnMaterial(const std::string& name);
        ~OwnMaterial();
        OwnMaterial(const OwnMaterial&) = delete;
        OwnMaterial& operator=(const OwnMaterial&) = delete;

        Ogre::MaterialPtr material;
    };

    bool fitsTexture(std::uint32_t width, std::uint32_t height) const;
    Ogre::TexturePtr createTexture(std::uint32_t unit, std::uint32_t width, std::uint32_t height,
                                   std::uint32_t depth, Ogre::PixelFormat format);
    void removeTexture(std::uint32_t unit);

    const std::uint32_t number_;
    const std::string name_;
    const std::string materialName_;
    const std::string rectangleName_;
    OwnMaterial material_;
    std::unique_ptr<Ogre::Rectangle2D> rectangle_;
    std::map<std::uint32_t, Ogre::TexturePtr> textures_;
    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    bool pixelBufferSwitch_;
    /// Rows without padding, where the picture's own cannot be uploaded.
    std::vector<unsigned char> tightRows_;
};

#endif
