#ifndef KELADJUST_HOST_BUSYLOCK_H
#define KELADJUST_HOST_BUSYLOCK_H

#include <memory>

#include "host/LibraryState.h"
#include "platform/Event.h"

namespace keladjust {

/// Keeps adjustments apart from one another and from starts and stops of the engine, once the busy
/// event exists.
class BusyLock {
public:
    BusyLock() {
        while ((busy_ = libraryState().busyEvent()) != nullptr) {
            busy_->wait();
            if (busy_ == libraryState().busyEvent()) return;
            // Closed while this call waited: there is another event by now, or none.
            busy_->signal();
        }
    }
    ~BusyLock() {
        if (busy_) busy_->signal();
    }
    BusyLock(const BusyLock&) = delete;
    BusyLock& operator=(const BusyLock&) = delete;

    bool isHeld() const { return busy_ != nullptr; }

private:
    std::shared_ptr<platform::Event> busy_;
};

}  // namespace keladjust

#endif
