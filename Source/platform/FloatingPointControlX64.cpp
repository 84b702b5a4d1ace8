#include <xmmintrin.h>

#include "platform/FloatingPointControl.h"

namespace keladjust::platform {

const FloatingPointControl defaultFloatingPointControl = 0x1F80;  // all exceptions masked
const FloatingPointControl denormalsAreZero = 0x8040;  // denormals-are-zero and flush-to-zero
const FloatingPointControl exceptionFlags = 0x3F;

FloatingPointControl floatingPointControl() noexcept {
    return _mm_getcsr();
}

void setFloatingPointControl(FloatingPointControl control) noexcept {
    _mm_setcsr(static_cast<unsigned int>(control));
}

}  // namespace keladjust::platform
