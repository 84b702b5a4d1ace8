#include "engine/KelOgreEffectBase.h"

#include <OgreCamera.h>
#include <OgreDepthBuffer.h>
#include <OgreHardwarePixelBuffer.h>
#include <OgreMath.h>
#include <OgreRenderSystem.h>
#include <OgreRenderTexture.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <OgreSceneManager.h>
#include <OgreSceneNode.h>
#include <OgreTextureManager.h>
#include <OgreViewport.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <utility>

#include "engine/EngineLog.h"
#include "engine/EngineName.h"
#include "engine/GlErrors.h"
#include "engine/ManualTexture.h"
#include "engine/PictureRows.h"
#include "engine/RenderSystemOptions.h"
#include "platform/Clock.h"

using keladjust::engineName;
using keladjust::logCurrentException;
using keladjust::logMessage;

namespace {

std::atomic<std::uint32_t> effectsMade{0};

/// Has a frame update this target and its viewport, and no later one. The viewport may be gone at
/// the end of the frame.
class UpdateOnce {
public:
    explicit UpdateOnce(Ogre::RenderTarget& target) : target_(target) { set(true); }
    ~UpdateOnce() { set(false); }
    UpdateOnce(const UpdateOnce&) = delete;
    UpdateOnce& operator=(const UpdateOnce&) = delete;

private:
    void set(bool on) {
        target_.setAutoUpdated(on);
        for (unsigned short i = 0; i < target_.getNumViewports(); ++i) {
            target_.getViewport(i)->setAutoUpdated(on);
        }
    }
    Ogre::RenderTarget& target_;
};

}  // namespace

KelOgreEffectBase::KelOgreEffectBase()
    : number_(++effectsMade), engine_(KelOgreBase::current()), readBack_(usesOpenGl()) {
    chooseReadBackMode();
}

KelOgreEffectBase::~KelOgreEffectBase() {
    try {
        KelOgreEffectBase::destroyScene();
    } catch (...) {
        logCurrentException("The scene is not taken down in order");
    }
}

bool KelOgreEffectBase::usesOpenGl() const {
    return engine_ == nullptr || engine_->renderSystemKind() == keladjust::renderSystemOpenGl;
}

void KelOgreEffectBase::chooseReadBackMode() {
    if (engine_ == nullptr || !usesOpenGl()) return;  // the engine copies
    pixelBufferSwitch_ =
        !engine_->isIntelGpu() && engine_->isPixelBufferCapable() && glBuffers().load();
    readBack_.setMode(pixelBufferSwitch_ ? readBackThroughBuffer : readBackDirectly);
}

void KelOgreEffectBase::process(unsigned char* outputBuffer, unsigned char* inputPixels,
                                std::uint32_t bytesPerPixel) {
    try {
        const char* const refusal = runPass(outputBuffer, inputPixels, bytesPerPixel);
        failure_ = refusal != nullptr ? refusal : "";
        if (refusal != nullptr) logMessage("The picture is not rendered and stays as it was");
    } catch (...) {
        logCurrentException("The picture is not rendered and stays as it was");
        failure_ = keladjust::currentExceptionText();
        releaseTextures();
    }
}

// Everything that can refuse or fail comes before the first byte of the result is written.
// @return null; or why nothing was rendered, which the log has in more words
const char* KelOgreEffectBase::runPass(unsigned char* outputBuffer, unsigned char* inputPixels,
                                       std::uint32_t bytesPerPixel) {
    constexpr const char* windowIsClosed = "The engine's window has been closed";
    if (!prepareScene()) return "The engine is not up";
    // Before anything is asked of the driver: on some systems a window takes its context along.
    if (!KelOgreEffectBase::frameStarted(Ogre::FrameEvent())) return windowIsClosed;
    if (!acceptsInputs()) return "The picture is missing, empty or larger than a texture may be";
    if (!keladjust::isRenderable(pictureFormat(), bytesPerPixel)) {
        constexpr const char* unsuitable = "Pictures of this depth and format are not rendered";
        logMessage(unsuitable);
        return unsuitable;
    }
    buildPrograms();
    if (getMaterial() == nullptr) return "The effect's program does not compile";
    if (usesOpenGl()) keladjust::takeDriverState();
    if (sizeChanged_ || renderTexture_ == nullptr || camera_ == nullptr) {
        if (!resizeScene(outputBuffer)) return "There is no render texture of that size";
    }
    if (!uploadInputs()) return "The picture cannot be uploaded";
    if (const char* const failure = driverFailure()) return failure;
    applyParameters();
    if (!renderOneFrame()) return stopped_ ? windowIsClosed : "The programs do not link";
    if (const char* const failure = driverFailure()) return failure;
    output_.data = outputBuffer;
    output_.changed = true;
    readResult(&output_, inputPixels, bytesPerPixel);
    return output_.changed ? "The render cannot be read back" : nullptr;
}

// The engine goes on with a texture that the driver has no memory for, and would render black.
// @return null while the driver is well
const char* KelOgreEffectBase::driverFailure() {
    using keladjust::DriverState;
    const DriverState state = usesOpenGl() ? keladjust::takeDriverState() : DriverState::fine;
    if (state == DriverState::fine) return nullptr;
    const char* const failure = state == DriverState::contextLost
                                    ? "The graphics driver has lost its context"
                                    : "The graphics driver is out of memory";
    logMessage(failure);
    releaseTextures();
    return failure;
}

// Whatever state the driver has left them in, the next pass begins with new ones.
void KelOgreEffectBase::releaseTextures() noexcept {
    sizeChanged_ = true;
    for (auto& [index, picture] : inputs_) picture.changed = true;
    const auto attempt = [](auto release) {
        try {
            release();
        } catch (...) {
            logCurrentException("Textures not released");
        }
    };
    attempt([this] { destroyRenderTexture(); });
    attempt([this] {
        if (picturePlane_ != nullptr) picturePlane_->removeTextures();
    });
}

bool KelOgreEffectBase::prepareScene() {
    if (engine_ == nullptr || engine_->root() == nullptr) {
        logMessage("Ogre had not been initialize!");
        return false;
    }
    Ogre::Root* root = engine_->root();
    if (!registered_) {
        root->addFrameListener(this);
        registered_ = true;
    }
    if (sceneManager_ == nullptr) createScene(*root);
    if (picturePlane_ == nullptr) {
        auto plane = std::make_unique<KelOgrePicturePlane>(pixelBufferSwitch_);
        plane->attachTo(*planeNode_);
        picturePlane_ = std::move(plane);
    }
    return true;
}

// All of it or nothing, so that a pass that fails here leaves the next one to begin anew.
void KelOgreEffectBase::createScene(Ogre::Root& root) {
    sceneManager_ = root.createSceneManager();
    try {
        sceneManager_->addRenderQueueListener(&witness_);
        createSceneNodes();
    } catch (...) {
        sceneNode_ = nullptr;
        planeNode_ = nullptr;
        root.destroySceneManager(sceneManager_);
        sceneManager_ = nullptr;
        throw;
    }
}

bool KelOgreEffectBase::resizeScene(unsigned char* outputBuffer) {
    const std::uint32_t maximum = KelOgreBase::maximumTextureSize();
    if (renderWidth_ == 0 || renderHeight_ == 0 || renderWidth_ > maximum ||
        renderHeight_ > maximum) {
        logMessage("There is no render texture of that size");
        return false;
    }
    // Until all is done, the next pass begins with this again.
    sizeChanged_ = true;
    if (camera_ == nullptr) createCamera();
    destroyRenderTexture();
    if (!resetViewports()) return false;
    camera_->setAspectRatio(static_cast<float>(renderWidth_) / static_cast<float>(renderHeight_));
    resizeOutput(renderWidth_, renderHeight_, outputBuffer);
    picturePlane_->resize(renderWidth_, renderHeight_);
    readBack_.rebuildBuffer(output_.byteSize);
    sizeChanged_ = false;
    return true;
}

bool KelOgreEffectBase::acceptsInputs() const {
    if (inputs_.empty() && inputTextures_.empty()) {
        logMessage("Image data is NULL!");
        return false;
    }
    return std::all_of(inputs_.begin(), inputs_.end(),
                       [this](const auto& entry) { return picturePlane_->accepts(entry.second); });
}

bool KelOgreEffectBase::uploadInputs() {
    for (auto& [index, picture] : inputs_) {
        if (!picture.changed) continue;
        if (!picturePlane_->setPictruePlaneImage(picture, index)) return false;
        picture.changed = false;
    }
    return std::all_of(inputTextures_.begin(), inputTextures_.end(), [this](const auto& entry) {
        return picturePlane_->setTexture(entry.second, entry.first);
    });
}

// What the result is stored as: a picture like that of input 0.
Ogre::PixelFormat KelOgreEffectBase::pictureFormat() const {
    const _ImageParam* picture = input(0);
    return picture != nullptr ? picture->format : Ogre::PF_A8R8G8B8;
}

void KelOgreEffectBase::readResult(_ImageParam* result, unsigned char* inputPixels,
                                   std::uint32_t bytesPerPixel) {
    if (result == nullptr) {
        logMessage("Error : Parameter is NULL!");
        return;
    }
    unsigned char* const destination = result->data != nullptr ? result->data : inputPixels;
    const Ogre::PixelFormat format = pictureFormat();
    if (destination == nullptr || !keladjust::isRenderable(format, bytesPerPixel)) {
        logMessage("There is nowhere to put the result");
        return;
    }
    // On some systems the context has gone with its window, and the driver cannot be asked.
    if (renderTexture_ != nullptr && !KelOgreEffectBase::frameStarted(Ogre::FrameEvent())) return;
    result->width = renderTexture_ != nullptr ? renderTexture_->getWidth() : 0;
    result->height = renderTexture_ != nullptr ? renderTexture_->getHeight() : 0;
    result->byteSize = std::size_t{result->width} * result->height * 4;
    scratch_.resize(result->byteSize);

    result->data = scratch_.data();
    const bool delivered = readScratch(*result);
    result->data = destination;
    if (!delivered) return;
    if (bytesPerPixel == 4) {
        std::copy(scratch_.begin(), scratch_.end(), destination);
    } else {
        keladjust::storeRender(scratch_.data(), result->width, result->height, format, destination);
    }
}

bool KelOgreEffectBase::readScratch(_ImageParam& result) {
    const keladjust::ReadBack::BoundBuffer buffer(readBack_, result.byteSize);
    return getPixels(&result);
}

bool KelOgreEffectBase::getPixels(_ImageParam* result) {
    if (result == nullptr || renderTexture_ == nullptr) {
        logMessage("Error: Render Texture is NULL!, Could not get pixels.");
        return false;
    }
    result->format = Ogre::PF_A8R8G8B8;
    const bool delivered =
        readBack_.copy(*engine_->root()->getRenderSystem(), *renderTexture_, *result);
    if (delivered && flip_) flipVertical(result->data, result->width, result->height);
    result->changed = !delivered;
    return delivered;
}

Ogre::MaterialPtr KelOgreEffectBase::getMaterial() {
    if (shader_ == nullptr) {
        logMessage("shader had not been created!");
        return nullptr;
    }
    if (material_ != nullptr) return material_;
    if (!prepareScene()) return nullptr;
    buildPrograms();
    applyParameters();
    if (shader_->createMaterial(picturePlane_->material())) material_ = picturePlane_->material();
    return material_;
}

void KelOgreEffectBase::setShaderParameters(const void* parameters) {
    if (parameters == nullptr) {
        logMessage("Filter shader parameters is null!");
        return;
    }
    for (const auto& [key, value] :
         *static_cast<const std::map<_CommDataType, float>*>(parameters)) {
        parameters_.set(key.programKind, key.name.c_str(), value);
    }
}

void KelOgreEffectBase::setReadBackMode(std::uint32_t mode) {
    readBack_.setMode(usesOpenGl() ? mode : static_cast<std::uint32_t>(readBackByEngine));
}

void KelOgreEffectBase::destroySelf() {
    delete this;
}

void KelOgreEffectBase::setShaderSource(const char* text, std::int32_t isFragment,
                                        std::int32_t fromSource) {
    if (text == nullptr) return;
    ProgramText& program = programs_[isFragment != 0 ? 1 : 0];
    program.text = text;
    program.fromSource = fromSource;
    program.isNew = true;
    if (shader_ == nullptr) {
        shader_ = std::make_unique<KelOgreShader>(
            engine_ != nullptr ? engine_->renderSystemKind()
                               : static_cast<std::uint32_t>(keladjust::renderSystemOpenGl));
    }
}

void KelOgreEffectBase::setShaderTarget(std::int32_t isFragment, const char* target) {
    ProgramText& program = programs_[isFragment != 0 ? 1 : 0];
    program.target = target != nullptr ? target : "";
    program.isNew = true;
}

void KelOgreEffectBase::setShaderEntryPoint(std::int32_t isFragment, const char* entryPoint) {
    ProgramText& program = programs_[isFragment != 0 ? 1 : 0];
    program.entryPoint = entryPoint != nullptr ? entryPoint : "";
    program.isNew = true;
}

void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::ColourValue& value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const _IntPoint& value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const _DoublePoint& value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const _FloatPoint& value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const _Matrix4Point& value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::Matrix4* value) {
    if (value != nullptr) parameters_.set(programKind, name, *value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::Vector2& value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::Vector3& value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::Vector4& value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name, float value) {
    parameters_.set(programKind, name, value);
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     std::int32_t value) {
    parameters_.set(programKind, name, value);
}

void KelOgreEffectBase::createSceneNodes() {
    Ogre::SceneNode* rootNode = sceneManager_->getRootSceneNode();
    sceneNode_ = rootNode->createChildSceneNode(engineName("effectSceneNodeName_", number_ - 1),
                                                Ogre::Vector3::ZERO, Ogre::Quaternion::IDENTITY);
    planeNode_ = sceneNode_->createChildSceneNode(engineName("effectPlaneNodeName_", number_ - 1),
                                                  Ogre::Vector3::ZERO, Ogre::Quaternion::IDENTITY);
}

void KelOgreEffectBase::buildPrograms() {
    for (const std::int32_t kind : {vertexProgram, fragmentProgram}) {
        ProgramText& program = programs_[kind];
        if (!program.isNew || shader_ == nullptr) continue;
        material_.reset();
        if (!program.text.empty()) {
            shader_->setShaderProgram(program.text.c_str(), kind, program.fromSource);
        }
        if (!program.target.empty())
            shader_->setDxShaderProgramTarget(kind, program.target.c_str());
        if (!program.entryPoint.empty()) {
            shader_->setDxShaderProgramEntryPoint(kind, program.entryPoint.c_str());
        }
        // Not before: what throws on the way is tried again with the next pass.
        program.isNew = false;
    }
}

void KelOgreEffectBase::applyParameters() {
    parameters_.applyTo(*shader_);
}

bool KelOgreEffectBase::hasMaterial() const {
    return material_ != nullptr && !programs_[vertexProgram].isNew &&
           !programs_[fragmentProgram].isNew;
}

void KelOgreEffectBase::destroyScene() {
    if (engine_ == nullptr || engine_->root() == nullptr) return;
    Ogre::Root* root = engine_->root();
    if (registered_) {
        root->removeFrameListener(this);
        registered_ = false;
    }
    // By name, because the destructor comes here, too.
    KelOgreEffectBase::destroyRenderTexture();
    if (KelOgreEffectBase::isWindowClosed()) {
        readBack_.forgetBuffer();
    } else {
        readBack_.deleteBuffer();
    }
    KelOgreEffectBase::windowClosed();
    material_.reset();
    picturePlane_.reset();
    inputTextures_.clear();
    shader_.reset();
    Ogre::Math::SetRandomValueProvider(nullptr);
    if (sceneManager_ == nullptr) return;
    sceneNode_ = nullptr;
    planeNode_ = nullptr;
    root->destroySceneManager(sceneManager_);
    sceneManager_ = nullptr;
}

void KelOgreEffectBase::createCamera() {
    const std::string name = engineName("PlayerCam_", number_ - 1);
    // One that is there already was left half made.
    Ogre::Camera* const camera = sceneManager_->hasCamera(name) ? sceneManager_->getCamera(name)
                                                                : sceneManager_->createCamera(name);
    camera->detachFromParent();
    Ogre::SceneNode* node = sceneManager_->getRootSceneNode()->createChildSceneNode();
    node->attachObject(camera);
    cameraController_ = std::make_unique<keladjust::CameraController>(*node);
    cameraController_->place(Ogre::Vector3(0, 0, 100), Ogre::Vector3::ZERO);
    camera->setAspectRatio(static_cast<float>(renderWidth_) / static_cast<float>(renderHeight_));
    camera->setNearClipDistance(5.0f);
    camera_ = camera;
}

void KelOgreEffectBase::createRenderTexture() {
    if (renderTexture_ != nullptr) return;
    renderTexture_ = keladjust::createManualTexture(
        engineName("RttTex", number_ - 1), {renderWidth_, renderHeight_, 1, Ogre::PF_R8G8B8A8},
        Ogre::TU_RENDERTARGET);
    Ogre::RenderTexture* target = renderTexture_->getBuffer()->getRenderTarget();
    // Only the effect's own passes render to it, and none looks at depths.
    target->setAutoUpdated(false);
    target->setDepthBufferPool(Ogre::DepthBuffer::POOL_NO_DEPTH);
    renderTextureCreated();
}

void KelOgreEffectBase::destroyRenderTexture() {
    if (renderTexture_ == nullptr) return;
    Ogre::RenderTexture* target = renderTexture_->getBuffer()->getRenderTarget();
    target->removeAllViewports();
    viewport_ = nullptr;
    target->detachDepthBuffer();
    Ogre::TextureManager::getSingleton().remove(renderTexture_->getHandle());
    renderTexture_.reset();
    // Depth buffers of a size that no target has any more.
    engine_->root()->getRenderSystem()->_cleanupDepthBuffers(false);
}

void KelOgreEffectBase::renderTextureCreated() {}

bool KelOgreEffectBase::resetViewports() {
    if (camera_ == nullptr) {
        logMessage("Camera is null, You can not set render texture!");
        return false;
    }
    createRenderTexture();
    Ogre::RenderTexture* target = renderTexture_->getBuffer()->getRenderTarget();
    target->removeAllViewports();
    viewport_ = target->addViewport(camera_);
    viewport_->setBackgroundColour(Ogre::ColourValue::Black);
    viewport_->setOverlaysEnabled(false);
    viewport_->setShadowsEnabled(false);
    viewport_->setSkiesEnabled(false);
    viewport_->setAutoUpdated(false);
    viewportsReset();
    return true;
}

void KelOgreEffectBase::viewportsReset() {}
void KelOgreEffectBase::frameBegins() {}

void KelOgreEffectBase::windowClosed() {
    if (camera_ == nullptr) return;
    cameraController_.reset();
    // The viewport goes with it: it must not be rendered through a camera that is gone.
    if (viewport_ != nullptr) {
        viewport_->getTarget()->removeAllViewports();
        viewport_ = nullptr;
    }
    camera_->detachFromParent();
    sceneManager_->destroyCamera(camera_);
    camera_ = nullptr;
}

bool KelOgreEffectBase::renderOneFrame() {
    const UpdateOnce update(*renderTexture_->getBuffer()->getRenderTarget());
    const auto now = static_cast<std::uint32_t>(keladjust::platform::milliseconds());
    const std::uint32_t delta = (now - lastFrameTime_) * frameTimeScale_;
    lastFrameTime_ = now;
    frameBegins();
    witness_.sawProgram = false;
    if (!engine_->root()->renderOneFrame(static_cast<Ogre::Real>(delta))) {
        stopped_ = isWindowClosed();
        windowClosed();
        return false;
    }
    if (usesOpenGl() && !witness_.sawProgram) {
        logMessage("The programs do not link");
        return false;
    }
    return true;
}

void KelOgreEffectBase::ProgramWitness::postRenderQueues() {
    GLint program = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    sawProgram = program != 0;
}

bool KelOgreEffectBase::isWindowClosed() const {
    return engine_->renderWindow() == nullptr || engine_->renderWindow()->isClosed();
}

bool KelOgreEffectBase::frameStarted(const Ogre::FrameEvent&) {
    stopped_ = isWindowClosed();
    if (!stopped_) return true;
    logMessage("window had been closed!");
    windowClosed();
    return false;
}

bool KelOgreEffectBase::frameRenderingQueued(const Ogre::FrameEvent& event) {
    return KelOgreEffectBase::frameStarted(event);
}
