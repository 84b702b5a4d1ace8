// Single-precision and whole numbers taken through double precision. Included once for every
// instruction set, like the kernels that use it; hence the guard that toggles.

#if defined(KELADJUST_WALKS_DOUBLEVECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_WALKS_DOUBLEVECTORS_INL_H
#undef KELADJUST_WALKS_DOUBLEVECTORS_INL_H
#else
#define KELADJUST_WALKS_DOUBLEVECTORS_INL_H
#endif

#include "walks/PixelVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_WASM

// Highway 1.0 has no arithmetic of doubles there, though there are instructions for it.
struct Doubles {
    v128_t raw;
};

HWY_INLINE Doubles constant(double value) {
    return {wasm_f64x2_splat(value)};
}
HWY_INLINE Doubles plus(Doubles a, Doubles b) {
    return {wasm_f64x2_add(a.raw, b.raw)};
}
HWY_INLINE Doubles minus(Doubles a, Doubles b) {
    return {wasm_f64x2_sub(a.raw, b.raw)};
}
HWY_INLINE Doubles times(Doubles a, Doubles b) {
    return {wasm_f64x2_mul(a.raw, b.raw)};
}
HWY_INLINE Doubles negated(Doubles a) {
    return {wasm_f64x2_neg(a.raw)};
}

HWY_INLINE Doubles widenedLower(Floats values) {
    return {wasm_f64x2_promote_low_f32x4(values.raw)};
}
HWY_INLINE Doubles widenedLower(Ints values) {
    return {wasm_f64x2_convert_low_i32x4(values.raw)};
}

/// What `map` makes of the numbers in double precision, narrowed once.
template <class Vector, class Map>
HWY_INLINE Floats throughDouble(Vector values, Map map) {
    const Vector upperHalf{wasm_i64x2_shuffle(values.raw, values.raw, 1, 1)};
    const v128_t lower = wasm_f32x4_demote_f64x2_zero(map(widenedLower(values)).raw);
    const v128_t upper = wasm_f32x4_demote_f64x2_zero(map(widenedLower(upperHalf)).raw);
    return Floats{wasm_i64x2_shuffle(lower, upper, 0, 2)};
}

#else

#if HWY_TARGET == HWY_SCALAR
using DoubleTag = hn::Rebind<double, FloatTag>;
#else
using DoubleTag = hn::Repartition<double, FloatTag>;
#endif
using Doubles = hn::Vec<DoubleTag>;

HWY_INLINE Doubles constant(double value) {
    return hn::Set(DoubleTag(), value);
}
HWY_INLINE Doubles plus(Doubles a, Doubles b) {
    return hn::Add(a, b);
}
HWY_INLINE Doubles minus(Doubles a, Doubles b) {
    return hn::Sub(a, b);
}
HWY_INLINE Doubles times(Doubles a, Doubles b) {
    return hn::Mul(a, b);
}
HWY_INLINE Doubles negated(Doubles a) {
    return hn::Neg(a);
}

/// What `map` makes of the numbers in double precision, narrowed once.
template <class Vector, class Map>
HWY_INLINE Floats throughDouble(Vector values, Map map) {
    const DoubleTag wide;
#if HWY_TARGET == HWY_SCALAR
    return hn::DemoteTo(FloatTag(), map(hn::PromoteTo(wide, values)));
#else
    const hn::Half<FloatTag> narrow;
    const hn::Half<hn::DFromV<Vector> > half;
    const Doubles lower = map(hn::PromoteTo(wide, hn::LowerHalf(half, values)));
    const Doubles upper = map(hn::PromoteTo(wide, hn::UpperHalf(half, values)));
    return hn::Combine(FloatTag(), hn::DemoteTo(narrow, upper), hn::DemoteTo(narrow, lower));
#endif
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif
