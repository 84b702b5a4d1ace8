#include "platform/FloatingPoint.h"

#include <xmmintrin.h>

namespace keladjust::platform {

namespace {
// All exceptions masked, round to nearest, neither flush-to-zero nor denormals-are-zero. Set by
// hand because C libraries differ in whether FE_DFL_ENV clears the two denormal bits.
constexpr unsigned int defaultVectorControl = 0x1F80;
}  // namespace

DefaultFloatingPoint::DefaultFloatingPoint() noexcept : savedVectorControl_(_mm_getcsr()) {
    std::fegetenv(&saved_);
    std::fesetenv(FE_DFL_ENV);
    _mm_setcsr(defaultVectorControl);
}

DefaultFloatingPoint::~DefaultFloatingPoint() {
    std::fesetenv(&saved_);
    _mm_setcsr(savedVectorControl_);
}

}  // namespace keladjust::platform
