#include "engine/KelOgreRenderThread.h"

#include <OgreException.h>
#include <OgreImage.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>
#include <utility>
#include <vector>

#include "engine/EffectFactory.h"
#include "engine/EngineLog.h"
#include "engine/KelEffectBase.h"
#include "engine/MyCSingleLock.h"
#include "engine/PictureFile.h"
#include "engine/RenderTiming.h"
#include "engine/platform/MessageWait.h"
#include "platform/Clock.h"
#include "platform/Event.h"
#include "platform/FloatingPoint.h"
#include "platform/ModuleReference.h"
#include "platform/SignalsBlocked.h"

using keladjust::logCurrentException;
using keladjust::logMessage;
using keladjust::platform::milliseconds;

namespace {

// The window is never seen; it only holds the graphics context.
constexpr unsigned windowWidth = 640;
constexpr unsigned windowHeight = 480;

constexpr std::uint32_t startFailed = 0xFFFFFFFF;
constexpr std::uint32_t endedInOrder = 0;

enum Command : std::uint32_t {
    commandCreateEffect = 0,
    commandMaterial = 1,
    commandShaderParameters = 2,
    commandLoadPicture = 3,
    commandStorePicture = 4,
    commandRender = 5,
    commandReadRecord = 6,
    commandRemoveEffect = 7,
    commandIdle = 8,
    commandDeleteAllAndStop = 9,
};

// A thread that has of the host's state neither the signals nor the floating-point environment,
// both of which threads inherit, as do those that the graphics driver starts from this one.
template <class Work>
std::thread startOnItsOwn(Work work) {
    const keladjust::platform::SignalsBlocked blocked;
    return std::thread([work = std::move(work)] {
        const keladjust::platform::DefaultFloatingPoint scope;
        work();
    });
}

// Without what a command is about, there is a line in the log and no command.
bool given(const void* subject, const char* lineIfNot) {
    if (subject == nullptr) logMessage(lineIfNot);
    return subject != nullptr;
}

}  // namespace

/// What a caller asks of the thread. Written by the caller, who holds the request lock until the
/// thread has signalled that it is done.
struct KelOgreRenderThread::Request {
    std::uint32_t command = commandIdle;
    char className[256] = {};
    KelEffectBase* effect = nullptr;
    /// Command 5: where the result goes. Command 6: points to a pointer to a _ResultRecord.
    void* output = nullptr;
    unsigned char* inputPixels = nullptr;
    std::uint32_t bytesPerPixel = 0;
    const char* imagePath = nullptr;
    const PictureReader* readPicture = nullptr;
    const void* parameter = nullptr;
    bool* slowFlag = nullptr;
    std::uint32_t evaluateMilliseconds = 0;
    std::string* failure = nullptr;
    bool removeAll = false;
    const unsigned char* imageData = nullptr;
    std::uint32_t imageWidth = 0;
    std::uint32_t imageHeight = 0;
    std::uint32_t imageFormat = 0;

    /// Set by the thread: the command did what it is for.
    bool succeeded = false;
};

/// The thread and all that belongs to it. One exists in the process at most; what the request and
/// done events hand to and fro needs no further lock.
struct KelOgreRenderThread::Thread {
    explicit Thread(std::atomic<const KelOgreBase*>& running) : runningEngine(running) {}

    std::uint32_t threadFunc(const KelOgreBase::Start& start, EngineMaker makeEngine);
    bool run(std::uint32_t command);

    static std::atomic<Thread*> single;

    /// The owner's.
    std::atomic<const KelOgreBase*>& runningEngine;
    Request request;
    keladjust::platform::Event requested;
    keladjust::platform::Event done;
    std::string whyNotStarted;
    /// Copied from the effect that ran last.
    bool stopFlag = false;
    std::unique_ptr<KelOgreBase> engine;
    std::unique_ptr<Ogre::Image> picture;
    std::vector<std::unique_ptr<KelEffectBase>> effects;

    /// Holds the code that the thread runs; given back after the thread has been joined.
    const keladjust::platform::ModuleReference module;
    std::thread handle;

private:
    bool bringUp(const KelOgreBase::Start& start, EngineMaker makeEngine);
    void takeDown();
    bool runCommand();
    bool render();
    bool loadPicture();
    bool storePicture();
    bool removeEffect();
    bool isListed(const KelEffectBase* effect) const;
    void requireEngine() const;
    template <class Pass>
    bool runPass(KelEffectBase* effect, Pass pass);

    keladjust::RenderTiming timing_;
};

constinit std::atomic<KelOgreRenderThread::Thread*> KelOgreRenderThread::Thread::single{nullptr};

std::uint32_t KelOgreRenderThread::Thread::threadFunc(const KelOgreBase::Start& start,
                                                      EngineMaker makeEngine) {
    if (!bringUp(start, makeEngine)) {
        logMessage("Initialze Ogre failed!");
        engine.reset();
        done.signal();
        return startFailed;
    }
    runningEngine = engine.get();
    done.signal();
    while (true) {
        keladjust::platform::waitAnsweringMessages(requested);
        try {
            request.succeeded = runCommand();
        } catch (...) {
            logCurrentException("The command failed");
        }
        if (stopFlag && request.command == commandRender) {
            // There is nothing left to render to. The caller goes on waiting until all is down.
            request.command = commandDeleteAllAndStop;
            requested.signal();
            continue;
        }
        if (request.command == commandDeleteAllAndStop) break;
        done.signal();
    }
    takeDown();
    done.signal();
    return endedInOrder;
}

bool KelOgreRenderThread::Thread::bringUp(const KelOgreBase::Start& start, EngineMaker makeEngine) {
    try {
        engine = makeEngine(start);
        if (!engine->setup(windowWidth, windowHeight)) {
            whyNotStarted = engine->whyNotSetUp();
            return false;
        }
        picture = std::make_unique<Ogre::Image>();
        return true;
    } catch (...) {
        logCurrentException("The render thread does not start");
        whyNotStarted = keladjust::currentExceptionText();
        return false;
    }
}

void KelOgreRenderThread::Thread::takeDown() {
    runningEngine = nullptr;
    picture.reset();
    engine.reset();
}

bool KelOgreRenderThread::Thread::runCommand() {
    switch (request.command) {
        case commandCreateEffect: {
            // Owned before it is in the list, which may have no memory left for it.
            std::unique_ptr<KelEffectBase> made(
                DYN_CLASS::CFactoryManager::create(request.className));
            effects.push_back(std::move(made));
            return effects.back() != nullptr;
        }
        case commandMaterial:
            return runPass(request.effect,
                           [](KelEffectBase& effect) { return effect.getMaterial() != nullptr; });
        case commandShaderParameters:
            return runPass(request.effect, [this](KelEffectBase& effect) {
                effect.setShaderParameters(request.parameter);
                return true;
            });
        case commandLoadPicture:
            return loadPicture();
        case commandStorePicture:
            return storePicture();
        case commandRender:
            return render();
        case commandReadRecord: {
            const _ResultRecord* record = *static_cast<_ResultRecord**>(request.output);
            stopFlag = false;
            return runPass(record->effect, [this, record](KelEffectBase& effect) {
                effect.readResult(record->image, request.inputPixels, request.bytesPerPixel);
                return true;
            });
        }
        case commandRemoveEffect: {
            const bool removed = removeEffect();
            request.command = commandIdle;
            return runCommand() && removed;
        }
        case commandIdle:
            if (engine != nullptr) {
                logMessage("Thread is idle!");
                engine->idle();
            }
            return true;
        case commandDeleteAllAndStop:
            logMessage("Delete all effect!");
            effects.clear();
            return true;
        default:
            return false;
    }
}

// Runs `pass` on one of the thread's effects and copies the stop flag that it leaves, come what
// may.
template <class Pass>
bool KelOgreRenderThread::Thread::runPass(KelEffectBase* effect, Pass pass) {
    if (!isListed(effect)) {
        logMessage("Error: has no this effect!");
        return false;
    }
    try {
        const bool succeeded = pass(*effect);
        stopFlag = effect->isStopped();
        return succeeded;
    } catch (...) {
        stopFlag = effect->isStopped();
        throw;
    }
}

bool KelOgreRenderThread::Thread::isListed(const KelEffectBase* effect) const {
    return std::any_of(effects.begin(), effects.end(), [effect](const auto& each) {
        return each != nullptr && each.get() == effect;
    });
}

bool KelOgreRenderThread::Thread::render() {
    const bool judged = request.slowFlag != nullptr;
    const bool timed = judged && request.evaluateMilliseconds >= 1 && timing_.isTimed();
    const std::int64_t begin = timed ? milliseconds() : 0;

    stopFlag = false;
    const bool succeeded = runPass(request.effect, [this](KelEffectBase& effect) {
        effect.process(static_cast<unsigned char*>(request.output), request.inputPixels,
                       request.bytesPerPixel);
        // Told here, because the effect may be gone by the time the caller wakes.
        if (request.failure != nullptr) *request.failure = effect.failure();
        return true;
    });

    if (!judged) return succeeded;
    if (request.evaluateMilliseconds < 1) {
        *request.slowFlag = true;
        logMessage("Evaluate time is low 0, it couldn't be completed work in this time.");
    } else {
        timing_.notePass(timed ? milliseconds() - begin : 0, request.evaluateMilliseconds,
                         *request.slowFlag);
    }
    return succeeded;
}

bool KelOgreRenderThread::Thread::loadPicture() {
    requireEngine();
    try {
        keladjust::loadPictureFile(request.imagePath, *picture);
        if (request.readPicture != nullptr) (*request.readPicture)(*picture);
        return true;
    } catch (...) {
        logCurrentException("Picture not loaded");
        return false;
    }
}

bool KelOgreRenderThread::Thread::storePicture() {
    requireEngine();
    try {
        keladjust::storePictureFile(request.imagePath, request.imageData, request.imageWidth,
                                    request.imageHeight, request.imageFormat);
        return true;
    } catch (...) {
        logCurrentException("Picture not stored");
        logMessage("Could not store picture. Maybe something that you specified is wrong.");
        return false;
    }
}

void KelOgreRenderThread::Thread::requireEngine() const {
    if (engine != nullptr) return;
    throw Ogre::InvalidParametersException(
        Ogre::Exception::ERR_INVALIDPARAMS, "Ogre had not been initialize!",
        "KelOgreRenderThread::threadFunc", "KelOgreRenderThread", __LINE__);
}

bool KelOgreRenderThread::Thread::removeEffect() {
    if (request.removeAll) {
        const bool any = !effects.empty();
        effects.clear();
        return any;
    }
    if (!isListed(request.effect)) {
        logMessage("Error: has no this effect!");
        return false;
    }
    std::erase_if(effects, [this](const auto& each) { return each.get() == request.effect; });
    return true;
}

// Runs the command that the request is set up for; the caller holds the request lock.
// @return true if it did what it is for
bool KelOgreRenderThread::Thread::run(std::uint32_t command) {
    request.command = command;
    request.succeeded = false;
    requested.signal();
    done.wait();
    return request.succeeded;
}

KelOgreRenderThread::KelOgreRenderThread(const char* firstPath, const char* secondPath,
                                         const char* logPath, std::uint32_t renderSystemKind,
                                         EngineMaker makeEngine)
    : firstPath_(firstPath != nullptr ? firstPath : ""),
      secondPath_(secondPath != nullptr ? secondPath : ""),
      logPath_(logPath != nullptr ? logPath : ""),
      renderSystemKind_(renderSystemKind),
      makeEngine_(makeEngine) {
    startThread({firstPath_, secondPath_, logPath_, renderSystemKind_});
}

KelOgreRenderThread::~KelOgreRenderThread() {
    stop();
}

std::unique_ptr<KelOgreBase> KelOgreRenderThread::makeKelOgreBase(const KelOgreBase::Start& start) {
    return std::make_unique<KelOgreBase>(start);
}

void KelOgreRenderThread::startThread(const KelOgreBase::Start& start) {
    auto made = std::make_unique<Thread>(runningEngine_);
    Thread* none = nullptr;
    if (!Thread::single.compare_exchange_strong(none, made.get())) return;
    // From here on the process-wide pointer owns it: a host that ends without stopping the engine
    // must not have the thread's data destroyed under it.
    Thread* const thread = made.release();
    try {
        thread->handle =
            startOnItsOwn([thread, start, make = makeEngine_] { thread->threadFunc(start, make); });
        thread->done.wait();
    } catch (...) {
        // No thread to be had, or no memory for one: as if the engine had failed to start.
        thread->whyNotStarted = keladjust::currentExceptionText();
    }
    if (runningEngine_ != nullptr) {
        thread_ = thread;
        return;
    }
    whyNotStarted_ = std::move(thread->whyNotStarted);
    stopThread(thread);
}

// The thread if it takes commands. After the loop has ended by itself it is still there, to be
// joined by stop(), but takes none.
KelOgreRenderThread::Thread* KelOgreRenderThread::runningThread() const {
    if (runningEngine_ != nullptr) return thread_;
    logMessage("Ogre Thread is null!");
    return nullptr;
}

void KelOgreRenderThread::stopThread(Thread* thread) {
    if (thread->handle.joinable()) thread->handle.join();
    Thread::single = nullptr;
    delete thread;
}

bool KelOgreRenderThread::isEngineInitialised() const {
    return runningEngine_ != nullptr;
}

const KelOgreBase* KelOgreRenderThread::engine() const {
    return runningEngine_;
}

// What all commands have in common: under the request lock, `setUp` fills the request in, or says
// why not and returns false; then the thread runs the command.
// @return 1 if it did what it is for
template <class SetUp>
int KelOgreRenderThread::post(std::uint32_t command, SetUp setUp) {
    MyCSingleLock lock(&requestLock_);
    Thread* const thread = runningThread();
    if (thread == nullptr || !setUp(*thread, thread->request)) return 0;
    return thread->run(command) ? 1 : 0;
}

KelEffectBase* KelOgreRenderThread::createEffect(const char* className) {
    MyCSingleLock lock(&requestLock_);
    if (Thread::single == nullptr) startThread({"", "", "", renderSystemKind_});
    const int created = post(commandCreateEffect, [className](Thread&, Request& request) {
        if (!given(className, "Error: class name is NULL!")) return false;
        std::snprintf(request.className, sizeof request.className, "%s", className);
        return true;
    });
    return created != 0 ? thread_->effects.back().get() : nullptr;
}

int KelOgreRenderThread::getMaterial(KelEffectBase* effect) {
    return post(commandMaterial, [effect](Thread&, Request& request) {
        request.effect = effect;
        return given(effect, "Error: This effect is NULL!");
    });
}

int KelOgreRenderThread::setShaderParameters(KelEffectBase* effect, const void* parameters) {
    return post(commandShaderParameters, [=](Thread&, Request& request) {
        request.effect = effect;
        request.parameter = parameters;
        return given(effect, "Filter is NULL!");
    });
}

int KelOgreRenderThread::loadPicture(const char* path, const PictureReader& read) {
    return post(commandLoadPicture, [path, &read](Thread&, Request& request) {
        request.imagePath = path;
        request.readPicture = read ? &read : nullptr;
        return path != nullptr;
    });
}

const Ogre::Image* KelOgreRenderThread::loadPicture(const char* path) {
    MyCSingleLock lock(&requestLock_);
    return loadPicture(path, nullptr) != 0 ? thread_->picture.get() : nullptr;
}

int KelOgreRenderThread::storePicture(const char* path, const unsigned char* pixels,
                                      std::uint32_t width, std::uint32_t height,
                                      std::uint32_t format) {
    return post(commandStorePicture, [=](Thread&, Request& request) {
        request.imagePath = path;
        request.imageData = pixels;
        request.imageWidth = width;
        request.imageHeight = height;
        request.imageFormat = format;
        return path != nullptr;
    });
}

int KelOgreRenderThread::render(KelEffectBase* effect, unsigned char* outputBuffer,
                                unsigned char* inputPixels, std::uint32_t bytesPerPixel,
                                bool* slowFlag, std::uint32_t evaluateMilliseconds,
                                std::string* failure) {
    return post(commandRender, [=](Thread& thread, Request& request) {
        if (!given(effect, "Error: This effect is NULL!")) return false;
        if (std::exchange(thread.stopFlag, false)) return false;
        request.effect = effect;
        request.output = outputBuffer;
        request.inputPixels = inputPixels;
        request.bytesPerPixel = bytesPerPixel;
        request.slowFlag = slowFlag;
        request.evaluateMilliseconds = evaluateMilliseconds;
        request.failure = failure;
        return true;
    });
}

int KelOgreRenderThread::readResult(_ResultRecord* record, unsigned char* inputPixels,
                                    std::uint32_t bytesPerPixel) {
    return post(commandReadRecord, [=, &record](Thread&, Request& request) {
        request.output = &record;
        request.inputPixels = inputPixels;
        request.bytesPerPixel = bytesPerPixel;
        return given(record != nullptr ? record->effect : nullptr, "Error: This effect is NULL!");
    });
}

int KelOgreRenderThread::removeEffect(KelEffectBase* effect, bool all) {
    return post(commandRemoveEffect, [=](Thread&, Request& request) {
        request.effect = effect;
        request.removeAll = all;
        return true;
    });
}

int KelOgreRenderThread::stop() {
    MyCSingleLock lock(&requestLock_);
    if (thread_ == nullptr) return 0;
    if (runningEngine_ != nullptr) thread_->run(commandDeleteAllAndStop);
    stopThread(std::exchange(thread_, nullptr));
    return 1;
}
