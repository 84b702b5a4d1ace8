#ifndef KELADJUST_APP_PLATFORM_ALLOCATIONWATCH_H
#define KELADJUST_APP_PLATFORM_ALLOCATIONWATCH_H

#include <cerrno>
#include <new>

namespace keladjust::app::platform {

/// Whether an allocation of this thread failed since it was made. Libraries written in C take a
/// lack of memory for a damaged file, or go on without what they had no room for; malloc() leaves
/// its mark in errno whatever they make of it.
class AllocationWatch {
public:
    AllocationWatch() { errno = 0; }

    /// @throws std::bad_alloc
    void throwIfOneFailed() const {
        if (errno == ENOMEM) throw std::bad_alloc();
    }
};

}  // namespace keladjust::app::platform

#endif
