#ifndef KELADJUST_HOST_LIBRARYSTATE_H
#define KELADJUST_HOST_LIBRARYSTATE_H

#include <array>
#include <atomic>
#include <memory>
#include <mutex>

#include "host/FilePicture.h"
#include "host/GpuEngine.h"
#include "platform/Event.h"

namespace keladjust {

/// The state of the host interface that outlives a call: all of it is here.
class LibraryState {
public:
    /// Adjustments never take the GPU path: the engine did not start or its driver is too old.
    std::atomic<bool> cpuOnly{false};

    /// What stands before "Ogre.log".
    std::array<char, 512> logPath{};

    /// Held while the engine is started, stopped or asked for a file.
    std::mutex life;
    /// Changed by the holder of `life` and the busy event, read by the holder of either.
    GpuEngine gpu;
    /// Why adjustments do not take the GPU path after a start; likewise.
    EngineReason whyNotOnGpu;
    /// The holder of `life` may use it.
    FilePicture filePicture;

    /// The busy event, signalled while no adjustment runs; null before initOgreRunTime() and after
    /// releaseOgre(). Calls in flight hold it, too, so that closing it under them is harmless.
    std::shared_ptr<platform::Event> busyEvent() const;
    void setBusyEvent(std::shared_ptr<platform::Event> event);

private:
    mutable std::mutex mutex_;
    std::shared_ptr<platform::Event> busy_;
};

LibraryState& libraryState();

}  // namespace keladjust

#endif
