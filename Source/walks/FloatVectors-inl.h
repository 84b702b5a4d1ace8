// What all vectors of floats do alike, however wide. Included once for every instruction set, like
// the kernels that use it; hence the guard that toggles.

#if defined(KELADJUST_WALKS_FLOATVECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_WALKS_FLOATVECTORS_INL_H
#undef KELADJUST_WALKS_FLOATVECTORS_INL_H
#else
#define KELADJUST_WALKS_FLOATVECTORS_INL_H
#endif

#include <hwy/highway.h>

#include "arithmetic/HeldVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// Whole numbers of as many bits.
template <class Values>
using IntsOf = hn::Vec<hn::RebindToSigned<hn::DFromV<Values>>>;

/// Truncated toward zero; for numbers that 32 bits hold. hn::ConvertTo() also mends what overflows,
/// which takes as long again as everything else about a channel's store.
template <class Values>
HWY_INLINE IntsOf<Values> truncateInRange(Values values) {
#if HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR
#if HWY_TARGET <= HWY_AVX3
    if constexpr (sizeof values.raw == 64) return IntsOf<Values>{_mm512_cvttps_epi32(values.raw)};
#endif
#if HWY_TARGET <= HWY_AVX2
    if constexpr (sizeof values.raw == 32) return IntsOf<Values>{_mm256_cvttps_epi32(values.raw)};
#endif
    if constexpr (sizeof values.raw == 16) return IntsOf<Values>{_mm_cvttps_epi32(values.raw)};
#else
    return hn::ConvertTo(hn::RebindToSigned<hn::DFromV<Values>>(), values);
#endif
}

/// Clamped to 0..limit; NaN gives 0.
template <class Values>
HWY_INLINE Values clampTo(float limit, Values values) {
    const hn::DFromV<Values> tag;
    const Values zero = held(hn::Zero(tag));
#if (HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR) || HWY_TARGET == HWY_WASM
    // The maximum is the second number if the first is none.
    const Values positive = hn::Max(values, zero);
#else
    const Values positive = hn::IfThenElseZero(hn::Gt(values, zero), values);
#endif
    return hn::Min(positive, held(hn::Set(tag, limit)));
}

/// Truncated; of numbers in 0..255.
template <class Values>
HWY_INLINE IntsOf<Values> truncateBytes(Values values) {
#if HWY_TARGET == HWY_WASM
    // The sum has the whole number in its lowest bits, in half the steps that V8 takes for a
    // conversion, which saturates.
    const hn::DFromV<Values> tag;
    const hn::RebindToSigned<decltype(tag)> ints;
    const Values sum = hn::Add(hn::Trunc(values), held(hn::Set(tag, 8388608.0f)));
    return hn::And(hn::BitCast(ints, sum), held(hn::Set(ints, 255)));
#else
    return truncateInRange(values);
#endif
}

/// The smaller one of 255 and of each number, truncated; of numbers that are not negative.
template <class Values>
HWY_INLINE IntsOf<Values> limitedToBytes(Values values) {
    return truncateBytes(hn::Min(values, held(hn::Set(hn::DFromV<Values>(), 255.0f))));
}

/// Clamped to 0..255 and truncated; NaN gives 0.
template <class Values>
HWY_INLINE IntsOf<Values> clampToBytes(Values values) {
#if HWY_TARGET == HWY_NEON && HWY_ARCH_ARM_A64
    // The conversion to unsigned numbers saturates at 0, and NaN gives 0: two steps for four.
    const uint32x4_t saturated = vcvtq_u32_f32(values.raw);
    return IntsOf<Values>(vreinterpretq_s32_u32(vminq_u32(saturated, vdupq_n_u32(255))));
#else
    return truncateBytes(clampTo(255.0f, values));
#endif
}

/// The same of numbers that 32 bits hold, or of none.
template <class Values>
HWY_INLINE IntsOf<Values> clampInRangeToBytes(Values values) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_SSE4
    // Whole numbers are compared sooner than floats; none has become the lowest one.
    const hn::RebindToSigned<hn::DFromV<Values>> tag;
    return hn::Min(hn::Max(truncateInRange(values), hn::Zero(tag)), held(hn::Set(tag, 255)));
#else
    return clampToBytes(values);
#endif
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif
