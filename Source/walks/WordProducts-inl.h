// The upper halves of products of words. Included once for every instruction set, like the kernels
// that use it; hence the guard that toggles.

#if defined(KELADJUST_WALKS_WORDPRODUCTS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_WALKS_WORDPRODUCTS_INL_H
#undef KELADJUST_WALKS_WORDPRODUCTS_INL_H
#else
#define KELADJUST_WALKS_WORDPRODUCTS_INL_H
#endif

#include <hwy/highway.h>

#include <cstdint>

#include "arithmetic/HeldVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// The upper halves of the products of two vectors of words.
template <class Words>
HWY_INLINE Words upperProduct(Words a, Words b) {
#if HWY_TARGET == HWY_WASM
    // There is no such instruction, and Highway's way takes out words one by one.
    const v128_t lower = wasm_u32x4_shr(wasm_u32x4_extmul_low_u16x8(a.raw, b.raw), 16);
    const v128_t upper = wasm_u32x4_shr(wasm_u32x4_extmul_high_u16x8(a.raw, b.raw), 16);
    return Words{wasm_u16x8_narrow_i32x4(lower, upper)};
#else
    return hn::MulHigh(a, b);
#endif
}

/// The same where the first are words of 0..255.
template <class Words>
HWY_INLINE Words upperProductOfBytes(Words bytes, Words words) {
#if HWY_TARGET == HWY_WASM
    const hn::DFromV<Words> tag;
    const Words byte = held(hn::Set(tag, std::uint16_t{255}));
    const Words lower = hn::ShiftRight<8>(hn::Mul(bytes, hn::And(words, byte)));
    return hn::ShiftRight<8>(hn::Add(hn::Mul(bytes, hn::ShiftRight<8>(words)), lower));
#else
    return hn::MulHigh(bytes, words);
#endif
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif
