#include <condition_variable>
#include <mutex>

#include "platform/Event.h"

namespace keladjust::platform {

struct Event::Handle {
    std::mutex mutex;
    std::condition_variable signalled;
    bool set = false;
};

Event::Event() : handle_(std::make_unique<Handle>()) {}
Event::~Event() = default;

void Event::signal() {
    const std::lock_guard lock(handle_->mutex);
    handle_->set = true;
    handle_->signalled.notify_one();
}

void Event::wait() {
    std::unique_lock lock(handle_->mutex);
    handle_->signalled.wait(lock, [this] { return handle_->set; });
    handle_->set = false;
}

}  // namespace keladjust::platform
