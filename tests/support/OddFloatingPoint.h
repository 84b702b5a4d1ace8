#ifndef KELADJUST_TESTS_SUPPORT_ODDFLOATINGPOINT_H
#define KELADJUST_TESTS_SUPPORT_ODDFLOATINGPOINT_H

#include <cfenv>

#include "platform/FloatingPointControl.h"

namespace keladjust::test {

/// While it lives, the thread rounds as told and takes denormals for zero, where the processor can.
class OddFloatingPoint {
public:
    explicit OddFloatingPoint(int rounding) {
        std::fesetround(rounding);
        platform::setFloatingPointControl(platform::floatingPointControl() |
                                          platform::denormalsAreZero);
    }
    ~OddFloatingPoint() {
        std::fesetenv(FE_DFL_ENV);
        platform::setFloatingPointControl(platform::defaultFloatingPointControl);
    }
    OddFloatingPoint(const OddFloatingPoint&) = delete;
    OddFloatingPoint& operator=(const OddFloatingPoint&) = delete;

    /// What the thread has of it.
    static platform::FloatingPointControl control() {
        return platform::floatingPointControl() & ~platform::exceptionFlags;
    }
};

}  // namespace keladjust::test

#endif
