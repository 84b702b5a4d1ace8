#include "engine/ReadBack.h"

#include <OgreHardwarePixelBuffer.h>
#include <OgreRenderSystem.h>
#include <OgreRenderTexture.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "engine/EngineLog.h"
#include "engine/GlErrors.h"

namespace keladjust {

namespace {

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

}  // namespace

void ReadBack::setMode(std::uint32_t mode) {
    const bool lacksBuffers = mode == readBackThroughBuffer && glBuffers_.mapBuffer == nullptr;
    mode_ = lacksBuffers ? static_cast<std::uint32_t>(readBackDirectly) : mode;
}

void ReadBack::rebuildBuffer(std::size_t bytes) {
    if (mode_ != readBackThroughBuffer) return;
    deleteBuffer();
    glBuffers_.genBuffers(1, &buffer_);
    glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, buffer_);
    glBuffers_.bufferData(GL_PIXEL_PACK_BUFFER, static_cast<GLsizeiptr>(bytes), nullptr,
                          GL_STREAM_READ);
    glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    bufferBytes_ = bytes;
}

void ReadBack::deleteBuffer() {
    if (buffer_ == 0) return;
    if (glBuffers_.isBuffer(buffer_)) glBuffers_.deleteBuffers(1, &buffer_);
    forgetBuffer();
}

void ReadBack::forgetBuffer() {
    buffer_ = 0;
    bufferBytes_ = 0;
}

void ReadBack::bindBuffer(std::size_t bytes) {
    if (mode_ != readBackThroughBuffer || bytes == 0) return;
    if (bufferBytes_ != bytes) rebuildBuffer(bytes);
    glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, buffer_);
}

void ReadBack::unbindBuffer() {
    if (mode_ == readBackThroughBuffer) glBuffers_.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

bool ReadBack::copy(Ogre::RenderSystem& renderSystem, Ogre::Texture& texture,
                    const _ImageParam& result) {
    if (usesOpenGl_) takeDriverState();
    if (mode_ != readBackByEngine) {
        // OpenGL reads from what is bound, and a frame ends with something else bound.
        renderSystem._setRenderTarget(texture.getBuffer()->getRenderTarget());
        takeDriverState();
        glReadBuffer(GL_COLOR_ATTACHMENT0);
        if (glGetError() != GL_NO_ERROR) {
            logMessage("The render texture cannot be read");
            return false;
        }
        if (copyByOpenGl(result)) return true;
    }
    return copyByEngine(texture, result);
}

// The engine asks the driver in the same way, and does not look whether it has got anything.
bool ReadBack::copyByEngine(Ogre::Texture& texture, const _ImageParam& result) {
    const auto& buffer = texture.getBuffer();
    const Ogre::PixelBox box(buffer->getWidth(), buffer->getHeight(), buffer->getDepth(),
                             result.format, result.data);
    buffer->blitToMemory(box);
    if (!usesOpenGl_ || glGetError() == GL_NO_ERROR) return true;
    logMessage("The render texture cannot be read");
    return false;
}

bool ReadBack::copyByOpenGl(const _ImageParam& result) {
    const TightPacking packing(result.width);
    const bool buffered = mode_ == readBackThroughBuffer;
    // With a pack buffer bound, the address is an offset into it.
    glReadPixels(0, 0, static_cast<GLsizei>(result.width), static_cast<GLsizei>(result.height),
                 GL_BGRA, GL_UNSIGNED_BYTE, buffered ? nullptr : result.data);
    return buffered ? copyFromBuffer(result) : glGetError() == GL_NO_ERROR;
}

bool ReadBack::copyFromBuffer(const _ImageParam& result) {
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
        if (!intact) unbindBuffer();
        return intact;
    }
    // The line begins as many characters later as the error's number says.
    const std::string message = "glMapBufferRangeEXT failed: ";
    logMessage(message.substr(std::min<std::size_t>(error, message.size())));
    if (mapped != nullptr) glBuffers_.unmapBuffer(GL_PIXEL_PACK_BUFFER);
    unbindBuffer();
    return false;
}

}  // namespace keladjust
