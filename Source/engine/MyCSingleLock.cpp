#include "engine/MyCSingleLock.h"

using keladjust::platform::CriticalSection;

MyCSingleLock::MyCSingleLock(CriticalSection* section) : section_(section), locked_(0) {
    keladjust::platform::enterCriticalSection(section_);
    locked_ = 1;
}

MyCSingleLock::~MyCSingleLock() {
    unlock();
}

void MyCSingleLock::unlock() {
    if (locked_ == 0) return;
    locked_ = 0;
    keladjust::platform::leaveCriticalSection(section_);
}
