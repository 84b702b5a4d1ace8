#include <windows.h>

#include "platform/CriticalSection.h"

namespace keladjust::platform {

struct CriticalSection::Handle {
    CRITICAL_SECTION section;
};

void initializeCriticalSection(CriticalSection* section) {
    section->handle = new CriticalSection::Handle;
    InitializeCriticalSection(&section->handle->section);
}

void deleteCriticalSection(CriticalSection* section) {
    DeleteCriticalSection(&section->handle->section);
    delete section->handle;
    section->handle = nullptr;
}

void enterCriticalSection(CriticalSection* section) {
    EnterCriticalSection(&section->handle->section);
}

void leaveCriticalSection(CriticalSection* section) {
    LeaveCriticalSection(&section->handle->section);
}

}  // namespace keladjust::platform
