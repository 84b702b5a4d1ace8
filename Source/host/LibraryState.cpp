#include "host/LibraryState.h"

#include <utility>

namespace keladjust {

std::shared_ptr<platform::Event> LibraryState::busyEvent() const {
    const std::lock_guard lock(mutex_);
    return busy_;
}

void LibraryState::setBusyEvent(std::shared_ptr<platform::Event> event) {
    const std::lock_guard lock(mutex_);
    busy_.swap(event);
}

LibraryState& libraryState() {
    static LibraryState state;
    return state;
}

}  // namespace keladjust
