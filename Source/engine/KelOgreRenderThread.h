#ifndef KELADJUST_ENGINE_KELOGRERENDERTHREAD_H
#define KELADJUST_ENGINE_KELOGRERENDERTHREAD_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/EffectRecords.h"
#include "engine/KelOgreBase.h"
#include "platform/CriticalSection.h"

namespace Ogre {
class Image;
}

/// The one thread that calls the engine and OpenGL, because a graphics context belongs to the
/// thread that made it. Any thread posts it one command at a time and waits until it is done.
///
/// There is one such thread in the process. An object that is made while another runs it has none:
/// all it is asked returns 0 or null.
class KelOgreRenderThread {
public:
    using EngineMaker = std::unique_ptr<KelOgreBase> (*)(const KelOgreBase::Start&);
    using PictureReader = std::function<void(const Ogre::Image&)>;

    /// Starts the thread and waits until the engine is up or has failed to start. Null paths are
    /// empty.
    /// @param firstPath  stands before "resources.cfg"
    /// @param secondPath stands before "plugins.cfg"
    /// @param logPath    stands before "Ogre.log"
    KelOgreRenderThread(const char* firstPath, const char* secondPath, const char* logPath,
                        std::uint32_t renderSystemKind, EngineMaker makeEngine = makeKelOgreBase);
    /// Stops the thread.
    virtual ~KelOgreRenderThread();
    KelOgreRenderThread(const KelOgreRenderThread&) = delete;
    KelOgreRenderThread& operator=(const KelOgreRenderThread&) = delete;

    static std::unique_ptr<KelOgreBase> makeKelOgreBase(const KelOgreBase::Start& start);

    /// True from the start of the engine until the thread leaves its loop.
    bool isEngineInitialised() const;
    /// Why the engine did not come up; empty if it did.
    const std::string& whyNotStarted() const { return whyNotStarted_; }
    /// The running engine, for a look at what it has found out; null while there is none.
    const KelOgreBase* engine() const;

    /// A new effect of that class, which lives until it is removed or the thread stops; null if
    /// there is no such class. Starts a thread without paths if there is none in the process.
    KelEffectBase* createEffect(const char* className);
    /// Has the effect build its material. @return 1 if there is one then
    int getMaterial(KelEffectBase* effect);
    /// @return 1 if the parameters were handed over
    int setShaderParameters(KelEffectBase* effect, const void* parameters);
    /// Loads a file into the one shared picture; what that held before is gone.
    /// @return the picture, until the thread has another to load or stops; null if it could not be
    ///         loaded
    const Ogre::Image* loadPicture(const char* path);
    /// The same, and has `read` look at the picture on the render thread, where nothing can take it
    /// away meanwhile.
    /// @return 1 if it was loaded and read
    int loadPicture(const char* path, const PictureReader& read);
    /// Stores tight rows of pixels under a name whose ending tells the kind of file.
    /// @return 1 if they were stored
    int storePicture(const char* path, const unsigned char* pixels, std::uint32_t width,
                     std::uint32_t height, std::uint32_t format);
    /// Renders the effect and reads the result back; see KelEffectBase::process().
    /// @param slowFlag may be null; with it, passes are timed: after ten passes it tells whether
    ///                 their average was above `evaluateMilliseconds`
    /// @param failure  may be null; set to why the pass that ran rendered nothing
    /// @return 1 if the effect ran; 0 without a running engine, and once after a pass that left the
    ///         stop flag set
    int render(KelEffectBase* effect, unsigned char* outputBuffer, unsigned char* inputPixels,
               std::uint32_t bytesPerPixel, bool* slowFlag, std::uint32_t evaluateMilliseconds,
               std::string* failure = nullptr);
    /// Reads the last result of `record->effect` into `record->image`. @return 1 if it was asked
    int readResult(_ResultRecord* record, unsigned char* inputPixels, std::uint32_t bytesPerPixel);
    /// Destroys one effect, or every one. @return 1 if there was something to destroy
    int removeEffect(KelEffectBase* effect, bool all);
    /// Destroys every effect, takes the engine down and ends the thread.
    /// @return 1 if a thread was stopped
    int stop();

private:
    struct Thread;
    struct Request;

    /// The lock of this object, given back whether or not the rest of it could be made.
    struct RequestLock : keladjust::platform::CriticalSection {
        RequestLock() { keladjust::platform::initializeCriticalSection(this); }
        ~RequestLock() { keladjust::platform::deleteCriticalSection(this); }
        RequestLock(const RequestLock&) = delete;
        RequestLock& operator=(const RequestLock&) = delete;
    };

    void startThread(const KelOgreBase::Start& start);
    Thread* runningThread() const;
    template <class SetUp>
    int post(std::uint32_t command, SetUp setUp);
    void stopThread(Thread* thread);

    RequestLock requestLock_;
    /// Of this object; null while it has none. Touched under the request lock only.
    Thread* thread_ = nullptr;
    /// From the start of the engine until its thread leaves its loop, else null. Asked without the
    /// lock, which is held while a command runs.
    std::atomic<const KelOgreBase*> runningEngine_{nullptr};
    std::string firstPath_;
    std::string secondPath_;
    std::string logPath_;
    std::uint32_t renderSystemKind_;
    EngineMaker makeEngine_;
    std::string whyNotStarted_;
};

#endif
