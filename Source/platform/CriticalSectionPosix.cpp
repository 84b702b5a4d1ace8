#include <mutex>

#include "platform/CriticalSection.h"

namespace keladjust::platform {

struct CriticalSection::Handle {
    std::recursive_mutex mutex;
};

void initializeCriticalSection(CriticalSection* section) {
    section->handle = new CriticalSection::Handle;
}

void deleteCriticalSection(CriticalSection* section) {
    delete section->handle;
    section->handle = nullptr;
}

void enterCriticalSection(CriticalSection* section) {
    section->handle->mutex.lock();
}

void leaveCriticalSection(CriticalSection* section) {
    section->handle->mutex.unlock();
}

}  // namespace keladjust::platform
