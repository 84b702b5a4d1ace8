#ifndef KELADJUST_PLATFORM_CRITICALSECTION_H
#define KELADJUST_PLATFORM_CRITICALSECTION_H

namespace keladjust::platform {

/// A lock that the thread that holds it may take again.
struct CriticalSection {
    struct Handle;
    Handle* handle = nullptr;
};

/// @throws std::bad_alloc
void initializeCriticalSection(CriticalSection* section);
void deleteCriticalSection(CriticalSection* section);
void enterCriticalSection(CriticalSection* section);
void leaveCriticalSection(CriticalSection* section);

}  // namespace keladjust::platform

#endif
