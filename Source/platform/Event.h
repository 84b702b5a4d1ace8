#ifndef KELADJUST_PLATFORM_EVENT_H
#define KELADJUST_PLATFORM_EVENT_H

#include <memory>

namespace keladjust::platform {

/// An auto-reset event: signal() lets one waiter through, or the next one if none waits.
class Event {
public:
    Event();  ///< Not signalled.
    ~Event();
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    void signal();
    /// Waits without time limit.
    void wait();
#if defined(_WIN32)
    /// For waits for more than the event.
    void* systemHandle() const;
#endif

private:
    struct Handle;
    std::unique_ptr<Handle> handle_;
};

}  // namespace keladjust::platform

#endif
