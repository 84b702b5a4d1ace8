#include <windows.h>

#include <new>

#include "platform/Event.h"

namespace keladjust::platform {

struct Event::Handle {
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    Handle() {
        if (event == nullptr) throw std::bad_alloc();
    }
    ~Handle() { CloseHandle(event); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
};

Event::Event() : handle_(std::make_unique<Handle>()) {}
Event::~Event() = default;

void Event::signal() {
    SetEvent(handle_->event);
}

void Event::wait() {
    WaitForSingleObject(handle_->event, INFINITE);
}

void* Event::systemHandle() const {
    return handle_->event;
}

}  // namespace keladjust::platform
