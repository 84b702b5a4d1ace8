// Constants that are kept in registers. Included once for every instruction set, like the kernels
// that use it; hence the guard that toggles.

#if defined(KELADJUST_ARITHMETIC_HELDVECTOR_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_ARITHMETIC_HELDVECTOR_INL_H
#undef KELADJUST_ARITHMETIC_HELDVECTOR_INL_H
#else
#define KELADJUST_ARITHMETIC_HELDVECTOR_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

/// The vector, as one of which the compiler knows nothing. What it knows to be constant it writes
/// out wherever it is used, and a WebAssembly engine may make it anew each time: V8 takes three or
/// four steps.
template <class Vector>
HWY_INLINE Vector held(Vector vector) {
#if HWY_TARGET == HWY_WASM
    __asm__("" : "+r"(vector.raw));
#endif
    return vector;
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif
