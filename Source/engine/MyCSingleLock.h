#ifndef KELADJUST_ENGINE_MYCSINGLELOCK_H
#define KELADJUST_ENGINE_MYCSINGLELOCK_H

#include <cstdint>

#include "platform/CriticalSection.h"

/// Holds a critical section from its construction to its end, or to unlock().
class MyCSingleLock {
public:
    explicit MyCSingleLock(keladjust::platform::CriticalSection* section);
    virtual ~MyCSingleLock();
    MyCSingleLock(const MyCSingleLock&) = delete;
    MyCSingleLock& operator=(const MyCSingleLock&) = delete;

    /// Leaves the section, once.
    void unlock();
    bool isLocked() const { return locked_ != 0; }

private:
    keladjust::platform::CriticalSection* section_;
    std::uint32_t locked_;
};

#endif
