#ifndef KELADJUST_TESTS_ENGINE_RECORDINGTEXTURES_H
#define KELADJUST_TESTS_ENGINE_RECORDINGTEXTURES_H

#include <OgreHardwarePixelBuffer.h>
#include <OgrePixelFormat.h>
#include <OgreRenderSystem.h>
#include <OgreRenderTexture.h>
#include <OgreRoot.h>
#include <OgreTextureManager.h>

#include <memory>
#include <stdexcept>
#include <vector>

namespace keladjust::test {

/// Textures that lie in memory, for a render system without a graphics card.
class MemoryPixels : public Ogre::HardwarePixelBuffer {
public:
    MemoryPixels(Ogre::uint32 width, Ogre::uint32 height, Ogre::PixelFormat format)
        : HardwarePixelBuffer(width, height, 1, format, HBU_DYNAMIC, true, false),
          bytes_(Ogre::PixelUtil::getMemorySize(width, height, 1, format)) {
        mSizeInBytes = bytes_.size();
    }
    ~MemoryPixels() override {
        if (target_ != nullptr) renderSystem().destroyRenderTexture(target_->getName());
    }

    /// What renders to the texture from now on.
    void addRenderTarget(const Ogre::String& name);

    void blitFromMemory(const Ogre::PixelBox& source, const Ogre::Box& place) override {
        requireWhole(place);
        Ogre::PixelUtil::bulkPixelConversion(source, box());
    }
    void blitToMemory(const Ogre::Box& place, const Ogre::PixelBox& destination) override {
        requireWhole(place);
        Ogre::PixelUtil::bulkPixelConversion(box(), destination);
    }
    Ogre::RenderTexture* getRenderTarget(std::size_t) override { return target_; }

protected:
    Ogre::PixelBox lockImpl(const Ogre::Box&, LockOptions) override { return box(); }
    void unlockImpl() override {}
    void _clearSliceRTT(std::size_t) override { target_ = nullptr; }

private:
    static Ogre::RenderSystem& renderSystem() {
        return *Ogre::Root::getSingleton().getRenderSystem();
    }
    Ogre::PixelBox box() { return {mWidth, mHeight, 1, mFormat, bytes_.data()}; }
    void requireWhole(const Ogre::Box& place) const {
        if (place.getWidth() != mWidth || place.getHeight() != mHeight) {
            throw std::invalid_argument("part of a texture");
        }
    }

    std::vector<unsigned char> bytes_;
    Ogre::RenderTexture* target_ = nullptr;
};

class MemoryTarget : public Ogre::RenderTexture {
public:
    MemoryTarget(const Ogre::String& name, MemoryPixels& pixels) : RenderTexture(&pixels, 0) {
        mName = name;
    }
    bool requiresTextureFlipping() const override { return false; }
};

inline void MemoryPixels::addRenderTarget(const Ogre::String& name) {
    target_ = new MemoryTarget(name, *this);
    renderSystem().attachRenderTarget(*target_);
}

class MemoryTexture : public Ogre::Texture {
public:
    using Texture::Texture;
    ~MemoryTexture() override {
        if (isLoaded()) {
            unload();
        } else {
            freeInternalResources();
        }
    }

protected:
    void createInternalResourcesImpl() override {
        auto* const pixels = new MemoryPixels(mWidth, mHeight, mFormat);
        mSurfaceList.emplace_back(pixels);
        if ((mUsage & Ogre::TU_RENDERTARGET) != 0) pixels->addRenderTarget(mName);
    }
    void freeInternalResourcesImpl() override {}
};

class MemoryTextureManager : public Ogre::TextureManager {
public:
    MemoryTextureManager() {
        Ogre::ResourceGroupManager::getSingleton()._registerResourceManager(mResourceType, this);
    }
    ~MemoryTextureManager() override {
        Ogre::ResourceGroupManager::getSingleton()._unregisterResourceManager(mResourceType);
    }
    Ogre::PixelFormat getNativeFormat(Ogre::TextureType, Ogre::PixelFormat format, int) override {
        return format;
    }

protected:
    Ogre::Resource* createImpl(const Ogre::String& name, Ogre::ResourceHandle handle,
                               const Ogre::String& group, bool isManual,
                               Ogre::ManualResourceLoader* loader,
                               const Ogre::NameValuePairList*) override {
        return new MemoryTexture(this, name, handle, group, isManual, loader);
    }
};

}  // namespace keladjust::test

#endif
