#if defined(_MSC_VER)
#include <intrin.h>
#endif

#include "platform/FloatingPointControl.h"

namespace keladjust::platform {

const FloatingPointControl defaultFloatingPointControl = 0;
const FloatingPointControl denormalsAreZero = std::uint64_t{1} << 24;  // FZ
const FloatingPointControl exceptionFlags = 0;

#if defined(_MSC_VER)

FloatingPointControl floatingPointControl() noexcept {
    return static_cast<FloatingPointControl>(_ReadStatusReg(ARM64_FPCR));
}

void setFloatingPointControl(FloatingPointControl control) noexcept {
    _WriteStatusReg(ARM64_FPCR, static_cast<__int64>(control));
}

#else

// Not every compiler has functions for this register.
FloatingPointControl floatingPointControl() noexcept {
    FloatingPointControl control = 0;
    __asm__ volatile("mrs %0, fpcr" : "=r"(control));
    return control;
}

void setFloatingPointControl(FloatingPointControl control) noexcept {
    __asm__ volatile("msr fpcr, %0" : : "r"(control));
}

#endif

}  // namespace keladjust::platform
