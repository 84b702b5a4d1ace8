#ifndef KELADJUST_ENGINE_KELEFFECTBASE_H
#define KELADJUST_ENGINE_KELEFFECTBASE_H

#include <OgreImage.h>
#include <OgreMaterial.h>
#include <OgreTexture.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "engine/EffectRecords.h"

/// What the render thread runs: pictures in, one render, a picture out. Holds the inputs; how they
/// are rendered is the derived class's matter. The order of the virtual operations is fixed.
class KelEffectBase {
public:
    KelEffectBase() = default;
    virtual ~KelEffectBase();
    KelEffectBase(const KelEffectBase&) = delete;
    KelEffectBase& operator=(const KelEffectBase&) = delete;

    /// Size of the next result.
    virtual void setRenderSize(std::uint32_t width, std::uint32_t height);
    /// Renders once and reads the result back, in the layout of input 0, into `outputBuffer`, or
    /// into `inputPixels` if that is null. A render that fails leaves the buffer alone.
    virtual void process(unsigned char* outputBuffer, unsigned char* inputPixels,
                         std::uint32_t bytesPerPixel) = 0;
    /// Reads the last render back into `result->data`, or into `inputPixels` if that is null.
    virtual void readResult(_ImageParam* result, unsigned char* inputPixels,
                            std::uint32_t bytesPerPixel) = 0;

    /// Input `index`; null if there is none.
    virtual const _ImageParam* input(std::uint32_t index) const;
    virtual void removeInput(std::uint32_t index);
    /// Takes a texture of the engine's as input.
    virtual void setInputTexture(const Ogre::TexturePtr& texture, std::uint32_t index);
    /// Takes the host's pixels as input; they stay the host's. Rows are padded to four bytes.
    virtual void setInputImage(unsigned char* pixels, std::uint32_t width, std::uint32_t height,
                               std::uint32_t inputIndex, std::uint32_t pixelFormat);
    /// The same for `count` inputs of one picture; for each follow its index and pixel format, both
    /// as std::uint32_t.
    virtual void setInputImages(unsigned char* pixels, std::uint32_t width, std::uint32_t height,
                                std::uint32_t count, ...);
    /// Ends the object.
    virtual void destroyBase();
    /// True if the last pass found that there is nothing left to render to.
    virtual bool isStopped() const;
    /// The material that the effect draws with; null if it cannot be built.
    virtual Ogre::MaterialPtr getMaterial() = 0;
    virtual void setShaderParameters(const void* parameters);

    /// Whether results are turned upside down.
    virtual void setFlip(bool flip);
    virtual bool flips() const;
    virtual std::uint32_t inputCount() const;
    /// Notes the size that the next result has and where it goes.
    virtual void resizeOutput(std::uint32_t width, std::uint32_t height,
                              unsigned char* outputBuffer);
    /// Takes a picture file of the engine's default resource group as input.
    virtual void setInputImageFile(const char* path, std::uint32_t index);
    /// Turns rows of four bytes a pixel upside down.
    virtual void flipVertical(unsigned char* pixels, std::uint32_t width, std::uint32_t height);

    /// Why the last pass rendered nothing; empty if it did render.
    const std::string& failure() const { return failure_; }

protected:
    std::map<std::uint32_t, _ImageParam> inputs_;
    std::uint32_t renderWidth_ = 0;
    std::uint32_t renderHeight_ = 0;
    bool sizeChanged_ = false;
    bool flip_ = false;
    bool stopped_ = false;
    std::string failure_;
    /// One row, for flipVertical().
    std::vector<unsigned char> row_;
    /// The result of the next render.
    _ImageParam output_;
    /// Inputs that are the engine's own: textures that have not been taken over yet, and pictures
    /// from files, which input records point into.
    std::map<std::uint32_t, Ogre::TexturePtr> inputTextures_;
    std::map<std::uint32_t, Ogre::Image> inputFiles_;

private:
    void storeInput(const _ImageParam& input);
};

#endif
