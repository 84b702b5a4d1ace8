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
#include <cstring>

#include "engine/EngineLog.h"
#include "engine/EngineName.h"
#include "engine/ManualTexture.h"
#include "engine/PictureRows.h"
#include "engine/RenderSystemOptions.h"
#include "platform/Clock.h"

using keladjust::engineName;
using keladjust::logCurrentException;
using keladjust::logMessage;

namespace {

std::atomic<std::uint32_t> effectsMade{0};

// Takes all pending errors and tells whether memory ran out among them. Errors that others have
// left behind are not ours, and without a working context there is no end of them.
bool ranOutOfMemory() {
    constexpr int manyErrors = 16;
    bool ranOut = false;
    for (int i = 0; i < manyErrors; ++i) {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR) break;
        ranOut = ranOut || error == GL_OUT_OF_MEMORY;
    }
    return ranOut;
}

/// Rows without padding in memory while it lives.
class TightPacking {
public:
    explicit TightPacking(std::uint32_t width) {
        glPixelStorei(GL_PACK_ROW_LENGTH, static_cast<GLint>(width));
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
    }
    ~TightPacking() {
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    }
    TightPacking(const TightPacking&) = delete;
    TightPacking& operator=(const TightPacking&) = delete;
};

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

KelOgreEffectBase::KelOgreEffectBase() : number_(++effectsMade), engine_(KelOgreBase::current()) {
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
    if (engine_ == nullptr || !usesOpenGl()) {
        readBackMode_ = readBackByEngine;
    } else if (!engine_->isIntelGpu() && engine_->isPixelBufferCapable() && glBuffers_.load()) {
        readBackMode_ = readBackThroughBuffer;
        pixelBufferSwitch_ = true;
    } else {
        readBackMode_ = readBackDirectly;
    }
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
    constexpr const char* outOfMemory = "The graphics driver is out of memory";
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
    if (usesOpenGl()) ranOutOfMemory();
    if (sizeChanged_ || renderTexture_ == nullptr || camera_ == nullptr) {
        if (!resizeScene(outputBuffer)) return "There is no render texture of that size";
    }
    if (!uploadInputs()) return "The picture cannot be uploaded";
    if (driverLacksMemory()) return outOfMemory;
    applyParameters();
    if (!renderOneFrame()) return stopped_ ? windowIsClosed : "The programs do not link";
    if (driverLacksMemory()) return outOfMemory;
    output_.data = outputBuffer;
    output_.changed = true;
    readResult(&output_, inputPixels, bytesPerPixel);
    return output_.changed ? "The render cannot be read back" : nullptr;
}

// The engine goes on with a texture that the driver has no memory for, and would render black.
bool KelOgreEffectBase::driverLacksMemory() {
    if (!usesOpenGl() || !ranOutOfMemory()) return false;
    logMessage("The graphics driver is out of memory");
    releaseTextures();
    return true;
}

// Whatever state the driver has left them in, the next pass begins with new ones.
void KelOgreEffectBase::releaseTextures() noexcept {
    sizeChanged_ = true;
    for (auto& [index, picture] : inputs_) picture.changed = true;
    try {
        destroyRenderTexture();
        if (picturePlane_ != nullptr) picturePlane_->removeTextures();
    } catch (...) {
        logCurrentException("Textures not released");
    }
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
    if (sceneManager_ == nullptr) {
        sceneManager_ = root->createSceneManager();
        sceneManager_->addRenderQueueListener(&witness_);
        createSceneNodes();
    }
    if (picturePlane_ == nullptr) {
        picturePlane_ =
            std::make_unique<KelOgrePicturePlane>(engine_->renderSystemKind(), pixelBufferSwitch_);
        picturePlane_->attachTo(*planeNode_);
    }
    return true;
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
    if (readBackMode_ == readBackThroughBuffer) rebuildPackBuffer();
    sizeChanged_ = false;
    return true;
}

void KelOgreEffectBase::rebuildPackBuffer() {
    deletePackBuffer();
    const std::size_t bytes = output_.byteSize;
    glBuffers_.genBuffers(1, &packBuffer_);
    glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, packBuffer_);
    glBuffers_.bufferData(GL_PIXEL_PACK_BUFFER, static_cast<GLsizeiptr>(bytes), nullptr,
                          GL_STREAM_READ);
    glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    packBufferBytes_ = bytes;
}

void KelOgreEffectBase::deletePackBuffer() {
    if (packBuffer_ == 0) return;
    if (glBuffers_.isBuffer(packBuffer_)) glBuffers_.deleteBuffers(1, &packBuffer_);
    packBuffer_ = 0;
    packBufferBytes_ = 0;
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
    result->width = renderTexture_ != nullptr ? renderTexture_->getWidth() : 0;
    result->height = renderTexture_ != nullptr ? renderTexture_->getHeight() : 0;
    result->byteSize = std::size_t{result->width} * result->height * 4;
    result->data = destination;

    // A picture of fewer bytes a pixel has no room for the render.
    const bool direct = bytesPerPixel == 4;
    if (!direct) {
        scratch_.resize(result->byteSize);
        result->data = scratch_.data();
    }
    const bool buffered = readBackMode_ == readBackThroughBuffer && result->byteSize != 0;
    if (buffered) {
        if (packBufferBytes_ != result->byteSize) rebuildPackBuffer();
        glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, packBuffer_);
    }
    const bool delivered = getPixels(result);
    if (buffered) glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    result->data = destination;
    if (delivered && !direct) {
        keladjust::storeRender(scratch_.data(), result->width, result->height, format, destination);
    }
}

bool KelOgreEffectBase::getPixels(_ImageParam* result) {
    if (result == nullptr || renderTexture_ == nullptr) {
        logMessage("Error: Render Texture is NULL!, Could not get pixels.");
        return false;
    }
    result->format = Ogre::PF_A8R8G8B8;
    bool delivered = true;
    if (readBackMode_ == readBackByEngine) {
        copyByEngine(*result);
    } else {
        delivered = copyByOpenGl(*result);
    }
    if (delivered && flip_) flipVertical(result->data, result->width, result->height);
    result->changed = !delivered;
    return delivered;
}

void KelOgreEffectBase::copyByEngine(const _ImageParam& result) {
    const auto& buffer = renderTexture_->getBuffer();
    const Ogre::PixelBox box(buffer->getWidth(), buffer->getHeight(), buffer->getDepth(),
                             result.format, result.data);
    buffer->blitToMemory(box);
}

bool KelOgreEffectBase::copyByOpenGl(const _ImageParam& result) {
    // OpenGL reads from what is bound, and a frame ends with something else bound.
    engine_->root()->getRenderSystem()->_setRenderTarget(
        renderTexture_->getBuffer()->getRenderTarget());
    ranOutOfMemory();
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    if (glGetError() != GL_NO_ERROR) {
        logMessage("The render texture cannot be read");
        return false;
    }
    bool copied = false;
    {
        const TightPacking packing(result.width);
        // With a pack buffer bound, the address is an offset into it.
        void* const target = readBackMode_ == readBackThroughBuffer ? nullptr : result.data;
        glReadPixels(0, 0, static_cast<GLsizei>(result.width), static_cast<GLsizei>(result.height),
                     GL_BGRA, GL_UNSIGNED_BYTE, target);
        copied = readBackMode_ == readBackThroughBuffer ? copyFromPackBuffer(result)
                                                        : glGetError() == GL_NO_ERROR;
    }
    if (!copied) copyByEngine(result);
    return true;
}

bool KelOgreEffectBase::copyFromPackBuffer(const _ImageParam& result) {
    GLenum error = glGetError();
    void* mapped = nullptr;
    if (error == GL_NO_ERROR) {
        mapped = glBuffers_.mapBuffer(GL_PIXEL_PACK_BUFFER, GL_READ_ONLY);
        error = glGetError();
    }
    if (mapped != nullptr && error == GL_NO_ERROR) {
        std::memcpy(result.data, mapped, result.byteSize);
        // The driver may have lost the contents meanwhile; then they are read again.
        const bool intact = glBuffers_.unmapBuffer(GL_PIXEL_PACK_BUFFER) == GL_TRUE;
        if (!intact) glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        return intact;
    }
    // The line begins as many characters later as the error's number says.
    const std::string message = "glMapBufferRangeEXT failed: ";
    logMessage(message.substr(std::min<std::size_t>(error, message.size())));
    if (mapped != nullptr) glBuffers_.unmapBuffer(GL_PIXEL_PACK_BUFFER);
    glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    return false;
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
        floats_[key] = value;
    }
}

void KelOgreEffectBase::setReadBackMode(std::uint32_t mode) {
    readBackMode_ = usesOpenGl() ? mode : static_cast<std::uint32_t>(readBackByEngine);
    // Without the driver's functions for buffers the direct way gives the same.
    if (readBackMode_ == readBackThroughBuffer && glBuffers_.mapBuffer == nullptr) {
        readBackMode_ = readBackDirectly;
    }
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
    if (name != nullptr) colours_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const _IntPoint& value) {
    if (name != nullptr) intPoints_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const _DoublePoint& value) {
    if (name != nullptr) doublePoints_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const _FloatPoint& value) {
    if (name != nullptr) floatPoints_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const _Matrix4Point& value) {
    if (name != nullptr) matrixPoints_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::Matrix4* value) {
    if (name != nullptr && value != nullptr) matrices_[{programKind, name}] = *value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::Vector2& value) {
    if (name != nullptr) vectors2_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::Vector3& value) {
    if (name != nullptr) vectors3_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     const Ogre::Vector4& value) {
    if (name != nullptr) vectors4_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name, float value) {
    if (name != nullptr) floats_[{programKind, name}] = value;
}
void KelOgreEffectBase::setParameter(std::int32_t programKind, const char* name,
                                     std::int32_t value) {
    if (name != nullptr) ints_[{programKind, name}] = value;
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
        program.isNew = false;
        material_.reset();
        if (!program.text.empty()) {
            shader_->setShaderProgram(program.text.c_str(), kind, program.fromSource);
        }
        if (!program.target.empty())
            shader_->setDxShaderProgramTarget(kind, program.target.c_str());
        if (!program.entryPoint.empty()) {
            shader_->setDxShaderProgramEntryPoint(kind, program.entryPoint.c_str());
        }
    }
}

template <class Value>
void KelOgreEffectBase::applyTable(const ParameterTable<Value>& table) {
    for (const auto& [key, value] : table) shader_->setParameter(key.programKind, key.name, value);
}

void KelOgreEffectBase::applyParameters() {
    applyTable(ints_);
    applyTable(floats_);
    applyTable(vectors4_);
    applyTable(vectors3_);
    applyTable(vectors2_);
    for (const auto& [key, value] : matrices_) {
        shader_->setParameter(key.programKind, key.name, &value);
    }
    applyTable(matrixPoints_);
    applyTable(floatPoints_);
    applyTable(doublePoints_);
    applyTable(intPoints_);
    applyTable(colours_);
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
    deletePackBuffer();
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
    if (sceneManager_->hasCamera(name)) {
        camera_ = sceneManager_->getCamera(name);
    } else {
        camera_ = sceneManager_->createCamera(name);
        Ogre::SceneNode* node = sceneManager_->getRootSceneNode()->createChildSceneNode();
        node->attachObject(camera_);
        cameraController_ = std::make_unique<keladjust::CameraController>(*node);
    }
    cameraController_->place(Ogre::Vector3(0, 0, 100), Ogre::Vector3::ZERO);
    camera_->setAspectRatio(static_cast<float>(renderWidth_) / static_cast<float>(renderHeight_));
    camera_->setNearClipDistance(5.0f);
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
