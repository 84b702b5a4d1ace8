#ifndef KELADJUST_HOST_LIBRARYSTATE_H
#define KELADJUST_HOST_LIBRARYSTATE_H

#include <array>
#include <atomic>
#include <memory>
#include <mutex>

#include "platform/Event.h"

namespace keladjust {

/// The state of the host interface that outlives a call: all of it is here.
class LibraryState {
public:
    /// Adjustments never take the GPU path: the engine did not start or its driver is too old.
    std::atomic<bool> cpuOnly{false};

    /// What stands before "Ogre.log".
    std::array<char, 512> logPath{};

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
