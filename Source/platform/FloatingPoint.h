#ifndef KELADJUST_PLATFORM_FLOATINGPOINT_H
#define KELADJUST_PLATFORM_FLOATINGPOINT_H

#include <cfenv>

#include "platform/FloatingPointControl.h"

namespace keladjust::platform {

/// Puts the calling thread into the default floating-point environment (round to nearest, denormals
/// kept, no traps) and gives the caller's back at the end of the scope.
class DefaultFloatingPoint {
public:
    DefaultFloatingPoint() noexcept;
    ~DefaultFloatingPoint();
    DefaultFloatingPoint(const DefaultFloatingPoint&) = delete;
    DefaultFloatingPoint& operator=(const DefaultFloatingPoint&) = delete;

private:
    std::fenv_t saved_;
    FloatingPointControl savedControl_;
};

}  // namespace keladjust::platform

#endif
