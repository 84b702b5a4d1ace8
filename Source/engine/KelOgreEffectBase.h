#ifndef KELADJUST_ENGINE_KELOGREEFFECTBASE_H
#define KELADJUST_ENGINE_KELOGREEFFECTBASE_H

#include <OgreColourValue.h>
#include <OgreFrameListener.h>
#include <OgreMatrix4.h>
#include <OgreRenderQueueListener.h>
#include <OgreVector.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/CameraController.h"
#include "engine/EffectRecords.h"
#include "engine/KelEffectBase.h"
#include "engine/KelOgreBase.h"
#include "engine/KelOgrePicturePlane.h"
#include "engine/KelOgreShader.h"
#include "engine/ParameterTables.h"
#include "engine/ReadBack.h"

namespace Ogre {
class Camera;
class RenderTexture;
class SceneManager;
class SceneNode;
class Viewport;
}  // namespace Ogre

/// One pass through one fragment program: the input picture on a plane that fills a render texture,
/// and the result read back. Made by the factory, on the render thread, which also runs it; only
/// setters are called from other threads, between two passes. The order of the virtual operations
/// is fixed.
class KelOgreEffectBase : public KelEffectBase, public Ogre::FrameListener {
public:
    /// What the factory knows the class as.
    static constexpr const char* typeName = "class KelOgreEffectBase";

    using ReadBackMode = keladjust::ReadBackMode;
    using enum keladjust::ReadBackMode;

    KelOgreEffectBase();
    ~KelOgreEffectBase() override;

    void process(unsigned char* outputBuffer, unsigned char* inputPixels,
                 std::uint32_t bytesPerPixel) override;
    void readResult(_ImageParam* result, unsigned char* inputPixels,
                    std::uint32_t bytesPerPixel) override;
    Ogre::MaterialPtr getMaterial() override;
    /// `parameters` points to a map from _CommDataType to float.
    void setShaderParameters(const void* parameters) override;

    /// A change of the mode takes effect with the next pass.
    virtual void setReadBackMode(std::uint32_t mode);
    /// Ends the object.
    virtual void destroySelf();
    /// Takes a program, which is compiled with the next pass.
    virtual void setShaderSource(const char* text, std::int32_t isFragment,
                                 std::int32_t fromSource);
    /// Under Direct3D 9: what a program is compiled for, and its first function.
    virtual void setShaderTarget(std::int32_t isFragment, const char* target);
    virtual void setShaderEntryPoint(std::int32_t isFragment, const char* entryPoint);
    /// Each sets a parameter for all passes from the next one on.
    virtual void setParameter(std::int32_t programKind, const char* name,
                              const Ogre::ColourValue& value);
    virtual void setParameter(std::int32_t programKind, const char* name, const _IntPoint& value);
    virtual void setParameter(std::int32_t programKind, const char* name,
                              const _DoublePoint& value);
    virtual void setParameter(std::int32_t programKind, const char* name, const _FloatPoint& value);
    virtual void setParameter(std::int32_t programKind, const char* name,
                              const _Matrix4Point& value);
    virtual void setParameter(std::int32_t programKind, const char* name,
                              const Ogre::Matrix4* value);
    virtual void setParameter(std::int32_t programKind, const char* name,
                              const Ogre::Vector2& value);
    virtual void setParameter(std::int32_t programKind, const char* name,
                              const Ogre::Vector3& value);
    virtual void setParameter(std::int32_t programKind, const char* name,
                              const Ogre::Vector4& value);
    virtual void setParameter(std::int32_t programKind, const char* name, float value);
    virtual void setParameter(std::int32_t programKind, const char* name, std::int32_t value);

    virtual void createSceneNodes();
    /// Hands program texts that have changed to the shader.
    virtual void buildPrograms();
    /// Hands every parameter to the shader.
    virtual void applyParameters();
    /// True once the material has been built from the programs as they are.
    virtual bool hasMaterial() const;
    /// Fills `result->data` with the render, rows of blue, green, red, alpha.
    /// @return false if there is nothing to read; the memory may have been written to
    virtual bool getPixels(_ImageParam* result);
    virtual void destroyScene();
    virtual void createCamera();
    virtual void createRenderTexture();
    virtual void destroyRenderTexture();
    /// For derived effects: the render texture has been made, has got its viewport, a frame is
    /// about to be rendered.
    virtual void renderTextureCreated();
    /// Makes the viewport anew. @return false, and the reason in the log, if there is no camera
    virtual bool resetViewports();
    virtual void viewportsReset();
    virtual void frameBegins();
    /// Lets go of what the scene holds for the window.
    virtual void windowClosed();
    /// @return false if nothing was rendered
    virtual bool renderOneFrame();

    bool frameStarted(const Ogre::FrameEvent& event) override;
    bool frameRenderingQueued(const Ogre::FrameEvent& event) override;

    bool isSizeChanged() const { return sizeChanged_; }
    std::uint32_t readBackMode() const { return readBack_.mode(); }
    const KelOgrePicturePlane* picturePlane() const { return picturePlane_.get(); }
    const KelOgreShader* shader() const { return shader_.get(); }
    const Ogre::TexturePtr& renderTexture() const { return renderTexture_; }

protected:
    /// The engine that the effect was made in.
    KelOgreBase* engine() const { return engine_; }
    keladjust::GlBuffers& glBuffers() { return readBack_.glBuffers(); }

private:
    /// Notes whether the program pair was in use while the plane was drawn: programs that do not
    /// link leave the engine drawing without any.
    class ProgramWitness : public Ogre::RenderQueueListener {
    public:
        void postRenderQueues() override;
        bool sawProgram = false;
    };

    void chooseReadBackMode();
    const char* runPass(unsigned char* outputBuffer, unsigned char* inputPixels,
                        std::uint32_t bytesPerPixel);
    const char* driverFailure();
    bool readScratch(_ImageParam& result);
    void releaseTextures() noexcept;
    void createScene(Ogre::Root& root);
    bool prepareScene();
    bool resizeScene(unsigned char* outputBuffer);
    bool acceptsInputs() const;
    bool uploadInputs();
    Ogre::PixelFormat pictureFormat() const;
    bool isWindowClosed() const;
    bool usesOpenGl() const;

    const std::uint32_t number_;
    KelOgreBase* const engine_;
    Ogre::SceneManager* sceneManager_ = nullptr;
    Ogre::Camera* camera_ = nullptr;
    Ogre::Viewport* viewport_ = nullptr;
    Ogre::SceneNode* sceneNode_ = nullptr;
    Ogre::SceneNode* planeNode_ = nullptr;
    std::unique_ptr<keladjust::CameraController> cameraController_;
    Ogre::TexturePtr renderTexture_;
    std::unique_ptr<KelOgrePicturePlane> picturePlane_;
    /// Texts or file names of the two programs, to be handed to the shader where they are new.
    struct ProgramText {
        std::string text;
        std::int32_t fromSource = 1;
        bool isNew = false;
        std::string target;
        std::string entryPoint;
    };
    ProgramText programs_[2];
    std::unique_ptr<KelOgreShader> shader_;
    Ogre::MaterialPtr material_;
    keladjust::ReadBack readBack_;
    keladjust::ParameterTables parameters_;

    std::uint32_t lastFrameTime_ = 0;
    std::uint32_t frameTimeScale_ = 1;
    bool registered_ = false;
    bool pixelBufferSwitch_ = false;
    ProgramWitness witness_;
    /// A render on its way into the picture, which is written to once nothing can fail any more.
    std::vector<unsigned char> scratch_;
};

#endif
