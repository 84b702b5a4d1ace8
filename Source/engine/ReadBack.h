#ifndef KELADJUST_ENGINE_READBACK_H
#define KELADJUST_ENGINE_READBACK_H

#include <OgreTexture.h>

#include <cstddef>
#include <cstdint>

#include "engine/EffectRecords.h"
#include "engine/GlBuffers.h"

namespace Ogre {
class RenderSystem;
}

namespace keladjust {

/// How a result gets from the render texture into memory.
enum ReadBackMode : std::uint32_t {
    readBackByEngine = 0,       ///< the engine copies it
    readBackDirectly = 1,       ///< OpenGL writes it to memory
    readBackThroughBuffer = 2,  ///< OpenGL writes it to a buffer object, which is copied
};

/// Copies renders into memory. Used on the render thread.
class ReadBack {
public:
    /// @param usesOpenGl whether the engine does; if not, it does all the copying
    explicit ReadBack(bool usesOpenGl) : usesOpenGl_(usesOpenGl) {}

    std::uint32_t mode() const { return mode_; }
    /// Without the driver's functions for buffers the direct way takes the place of that through
    /// one; it gives the same.
    void setMode(std::uint32_t mode);

    /// Has the mode that goes through a buffer make one for that many bytes.
    void rebuildBuffer(std::size_t bytes);
    void deleteBuffer();
    /// The buffer has gone with the graphics context: the driver must not be asked for it any more.
    void forgetBuffer();

    /// Has the buffer bound while it lives, made anew if it has another size; nothing in the other
    /// modes.
    class BoundBuffer {
    public:
        BoundBuffer(ReadBack& readBack, std::size_t bytes) : readBack_(readBack) {
            readBack_.bindBuffer(bytes);
        }
        ~BoundBuffer() { readBack_.unbindBuffer(); }
        BoundBuffer(const BoundBuffer&) = delete;
        BoundBuffer& operator=(const BoundBuffer&) = delete;

    private:
        ReadBack& readBack_;
    };

    /// Fills `result.data` with tight rows of blue, green, red, alpha; the buffer is bound.
    /// @return false if the texture cannot be read; the memory may have been written to
    bool copy(Ogre::RenderSystem& renderSystem, Ogre::Texture& texture, const _ImageParam& result);

    /// The driver's functions for buffers, once they have been loaded.
    GlBuffers& glBuffers() { return glBuffers_; }

private:
    void bindBuffer(std::size_t bytes);
    void unbindBuffer();
    bool copyByOpenGl(const _ImageParam& result);
    bool copyFromBuffer(const _ImageParam& result);
    bool copyByEngine(Ogre::Texture& texture, const _ImageParam& result);

    const bool usesOpenGl_;
    std::uint32_t mode_ = readBackByEngine;
    GlBuffers glBuffers_;
    GLuint buffer_ = 0;
    std::size_t bufferBytes_ = 0;
};

}  // namespace keladjust

#endif
