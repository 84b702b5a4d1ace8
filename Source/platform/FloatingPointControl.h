#ifndef KELADJUST_PLATFORM_FLOATINGPOINTCONTROL_H
#define KELADJUST_PLATFORM_FLOATINGPOINTCONTROL_H

#include <cstdint>

namespace keladjust::platform {

/// What the processor's register says about the calling thread's floating-point numbers: how they
/// are rounded, whether denormals count as zero, what is trapped. <cfenv> alone does not do: C
/// libraries differ in which of these bits it gives back and clears. A file of its own for each
/// processor implements this; where there is no such register, all of it is 0.
using FloatingPointControl = std::uint64_t;

FloatingPointControl floatingPointControl() noexcept;
void setFloatingPointControl(FloatingPointControl control) noexcept;

/// Round to nearest, denormals kept, no traps.
extern const FloatingPointControl defaultFloatingPointControl;
/// The bits by which the processor takes denormals for zero, and makes none.
extern const FloatingPointControl denormalsAreZero;
/// The bits that say which exceptions there have been, where they stand in the same register.
extern const FloatingPointControl exceptionFlags;

}  // namespace keladjust::platform

#endif
