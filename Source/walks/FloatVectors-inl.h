// What all vectors of floats do alike, however wide. Included once for every instruction set, like
// the kernels that use it; hence the guard that toggles.

#if defined(KELADJUST_WALKS_FLOATVECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_WALKS_FLOATVECTORS_INL_H
#undef KELADJUST_WALKS_FLOATVECTORS_INL_H
#else
#define KELADJUST_WALKS_FLOATVECTORS_INL_H
#endif

#include <hwy/highway.h>

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
    const Values zero = hn::Zero(tag);
#if HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR
    // The processor's maximum is its second operand if the first is NaN.
    const Values positive = hn::Max(values, zero);
#else
    const Values positive = hn::IfThenElseZero(hn::Gt(values, zero), values);
#endif
    return hn::Min(positive, hn::Set(tag, limit));
}

/// Clamped to 0..255 and truncated; NaN gives 0.
template <class Values>
HWY_INLINE IntsOf<Values> clampToBytes(Values values) {
    return truncateInRange(clampTo(255.0f, values));
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif
