#include "platform/FloatingPointControl.h"

namespace keladjust::platform {

// WebAssembly has one way to compute, which is the default one.
const FloatingPointControl defaultFloatingPointControl = 0;
const FloatingPointControl denormalsAreZero = 0;
const FloatingPointControl exceptionFlags = 0;

FloatingPointControl floatingPointControl() noexcept {
    return 0;
}

void setFloatingPointControl(FloatingPointControl) noexcept {}

}  // namespace keladjust::platform
