// The formulas of distortion and fringing along a row, in their own order and precision.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/rows/LensMaps.cpp"
#include <hwy/foreach_target.h>

#include <algorithm>
#include <cstring>

#include "filters/rows/LensMaps.h"
#include "filters/spans/SpanVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// The low 16 bits of the truncated number, with their sign.
HWY_INLINE Ints coordinates(Floats values) {
    return hn::ShiftRight<16>(hn::ShiftLeft<16>(truncateToInts(values)));
}

// The first `count` of the numbers.
template <class Value>
HWY_INLINE void storeFirst(Ints values, std::size_t count, Value* to) {
    static_assert(sizeof(Value) == sizeof(std::int32_t));
    if (count >= hn::Lanes(IntTag())) {
        std::memcpy(to, &values, sizeof values);
        return;
    }
    HWY_ALIGN std::int32_t lanes[HWY_LANES(std::int32_t)];
    hn::Store(values, IntTag(), lanes);
    std::memcpy(to, lanes, count * sizeof(Value));
}

/// Places relative to the centre: how far away and in which direction.
struct Rays {
    HWY_INLINE Rays(Floats x, Floats y) : length(hn::Sqrt(hn::Add(hn::Mul(y, y), hn::Mul(x, x)))) {
        const FloatMask atCentre = hn::Eq(length, constant(0.0f));
        directionX = hn::IfThenZeroElse(atCentre, hn::Div(x, length));
        directionY = hn::IfThenZeroElse(atCentre, hn::Div(y, length));
    }
    Floats length;
    Floats directionX;
    Floats directionY;
};

/// The rows that vectors of places lie in.
class RowRange {
public:
    HWY_INLINE RowRange()
        : first_(constant(rows::SourceRows{}.first)),
          last_(constant(rows::SourceRows{}.last)),
          outside_(hn::Zero(IntTag())) {}

    HWY_INLINE void add(Ints rows, hn::Mask<IntTag> outside) {
        first_ = hn::Min(first_, rows);
        last_ = hn::Max(last_, rows);
        outside_ = hn::Or(outside_, hn::VecFromMask(IntTag(), outside));
    }

    rows::SourceRows rows() const {
        const IntTag tag;
        HWY_ALIGN std::int32_t first[HWY_LANES(std::int32_t)];
        HWY_ALIGN std::int32_t last[HWY_LANES(std::int32_t)];
        hn::Store(first_, tag, first);
        hn::Store(last_, tag, last);
        const std::size_t lanes = hn::Lanes(tag);
        return {*std::min_element(first, first + lanes), *std::max_element(last, last + lanes),
                !hn::AllFalse(tag, hn::MaskFromVec(outside_))};
    }

private:
    Ints first_;
    Ints last_;
    Ints outside_;
};

// Products from left to right.
template <int exponent>
HWY_INLINE Floats power(Floats value) {
    Floats product = value;
    for (int i = 1; i < exponent; ++i) product = hn::Mul(product, value);
    return product;
}

rows::SourceRows placesOfRow(const rows::Distortion& distortion,
                             const rows::ColumnDistances& columns, float rowDistance,
                             rows::Place* places) {
    const FloatTag tag;
    // A coordinate of 16 bits does not reach further.
    const auto lastOf = [](unsigned size) HWY_ATTR {
        return constant(static_cast<std::int32_t>(std::min(size, 1u << 15)) - 1);
    };
    const Ints lastColumn = lastOf(distortion.width);
    const Ints lastRow = lastOf(distortion.height);
    const Ints zero = hn::Zero(IntTag());
    RowRange range;
    for (std::size_t i = 0; i < columns.count(); i += hn::Lanes(tag)) {
        const Rays rays(hn::LoadU(tag, columns.data() + i), constant(rowDistance));
        const Floats raised = distortion.cubic ? power<3>(rays.length) : power<6>(rays.length);
        const Floats moved =
            hn::Mul(hn::Add(hn::Mul(raised, constant(distortion.strength)), rays.length),
                    constant(distortion.scale));
        const auto place = [&](Floats direction, float unit, float centre) HWY_ATTR {
            return coordinates(
                hn::Add(hn::Mul(hn::Mul(moved, direction), constant(unit)), constant(centre)));
        };
        const Ints x = place(rays.directionX, distortion.unitX, distortion.centreX);
        const Ints y = place(rays.directionY, distortion.unitY, distortion.centreY);
        range.add(y, hn::Or(hn::Lt(hn::Min(x, y), zero),
                            hn::Or(hn::Gt(x, lastColumn), hn::Gt(y, lastRow))));
        const Ints pair = hn::Or(hn::And(x, constant(0xFFFF)), hn::ShiftLeft<16>(y));
        storeFirst(pair, columns.count() - i, places + i);
    }
    return range.rows();
}

// Below 0, which NaN counts as, the lower bound, even where the upper one is smaller.
HWY_INLINE Floats clampPlace(Floats value, Floats last) {
    const Floats positive = hn::IfThenElseZero(hn::Ge(value, constant(0.0f)), value);
    return hn::IfThenElse(hn::Ge(positive, last), last, positive);
}

rows::SourceRows pixelsOfRow(const rows::Fringing& fringing, const rows::ColumnDistances& columns,
                             float rowDistance, rows::FringingRow row) {
    const FloatTag tag;
    const Ints width =
        hn::BitCast(IntTag(), hn::Set(hn::RebindToUnsigned<IntTag>(), fringing.columns));
    const Ints nowhere =
        hn::BitCast(IntTag(), hn::Set(hn::RebindToUnsigned<IntTag>(), fringing.nowhere));
    RowRange range;
    for (std::size_t i = 0; i < columns.count(); i += hn::Lanes(tag)) {
        const Rays rays(hn::LoadU(tag, columns.data() + i), constant(rowDistance));
        const Floats moved = hn::Mul(
            hn::Add(hn::Mul(power<10>(rays.length), constant(fringing.strength)), rays.length),
            constant(fringing.scale));
        const auto pixels = [&](Floats directionX, Floats directionY) HWY_ATTR {
            const auto place = [&](Floats direction, float unit, float centre,
                                   float last) HWY_ATTR {
                const Floats value =
                    hn::Add(hn::Mul(hn::Mul(direction, moved), constant(unit)), constant(centre));
                return coordinates(clampPlace(value, constant(last)));
            };
            const Ints column = place(directionX, fringing.width, fringing.centreX, fringing.lastX);
            const Ints line = place(directionY, fringing.height, fringing.centreY, fringing.lastY);
            const auto outside = hn::Lt(hn::Or(column, line), hn::Zero(IntTag()));
            range.add(line, outside);
            return hn::IfThenElse(outside, nowhere, hn::Add(hn::Mul(line, width), column));
        };
        const auto pixelsAt = [&](float scale) HWY_ATTR {
            return pixels(hn::Mul(constant(scale), rays.directionX),
                          hn::Mul(constant(scale), rays.directionY));
        };
        const std::size_t count = columns.count() - i;
        storeFirst(pixelsAt(fringing.blueScale), count, row.blue + i);
        storeFirst(pixels(rays.directionX, rays.directionY), count, row.green + i);
        storeFirst(pixelsAt(fringing.redScale), count, row.red + i);
    }
    return range.rows();
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(placesOfRow);
HWY_EXPORT(pixelsOfRow);

rows::SourceRows rows::placesOfRow(const Distortion& distortion, const ColumnDistances& columns,
                                   float rowDistance, Place* places) {
    return HWY_DYNAMIC_DISPATCH(placesOfRow)(distortion, columns, rowDistance, places);
}
rows::SourceRows rows::pixelsOfRow(const Fringing& fringing, const ColumnDistances& columns,
                                   float rowDistance, FringingRow row) {
    return HWY_DYNAMIC_DISPATCH(pixelsOfRow)(fringing, columns, rowDistance, row);
}

}  // namespace keladjust
#endif
