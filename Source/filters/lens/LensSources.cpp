// The formulas of distortion and fringing along a row, in their own order and precision.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/lens/LensSources.cpp"
#include <hwy/foreach_target.h>

#include "filters/lens/LensSources.h"

#include <cstring>

#include "walks/PixelVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

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

// Products from left to right.
template <int exponent>
HWY_INLINE Floats power(Floats value) {
    Floats product = value;
    for (int i = 1; i < exponent; ++i) product = hn::Mul(product, value);
    return product;
}

// How far from the centre sources lie.
template <int exponent>
HWY_INLINE Floats sourceLength(const Lens& lens, Floats length) {
    const Floats added = hn::Mul(power<exponent>(length), constant(lens.strength));
    return hn::Mul(hn::Add(added, length), constant(lens.scale));
}

HWY_INLINE Floats along(Floats direction, Floats length, float unit) {
    return hn::Mul(hn::Mul(direction, length), constant(unit));
}

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

template <int exponent>
void placesOfRowRaised(const Lens& lens, const ColumnDistances& columns, float rowDistance,
                       Place* places) {
    const FloatTag tag;
    for (std::size_t i = 0; i < columns.count(); i += hn::Lanes(tag)) {
        const Rays rays(hn::LoadU(tag, columns.data() + i), constant(rowDistance));
        const Floats length = sourceLength<exponent>(lens, rays.length);
        const auto place = [&](Floats direction, float unit, float centre) HWY_ATTR {
            return coordinates(hn::Add(along(direction, length, unit), constant(centre)));
        };
        const Ints x = place(rays.directionX, lens.unitX, lens.centreX);
        const Ints y = place(rays.directionY, lens.unitY, lens.centreY);
        const Ints pair = hn::Or(hn::And(x, constant(0xFFFF)), hn::ShiftLeft<16>(y));
        storeFirst(pair, columns.count() - i, places + i);
    }
}

void placesOfRow(const Lens& lens, const ColumnDistances& columns, float rowDistance,
                 Place* places) {
    if (lens.power == barrelPower) {
        placesOfRowRaised<barrelPower>(lens, columns, rowDistance, places);
    } else {
        placesOfRowRaised<pincushionPower>(lens, columns, rowDistance, places);
    }
}

// Numbers meet the lower bound first and then the upper one, be that the smaller; NaN gives the
// lower one.
HWY_INLINE Floats clampPlace(Floats value, Floats last) {
    const Floats positive = hn::IfThenElseZero(hn::Ge(value, constant(0.0f)), value);
    const Floats bounded = hn::IfThenElse(hn::Ge(positive, last), last, positive);
    return hn::IfThenElseZero(hn::Eq(value, value), bounded);
}

void pixelsOfRow(const Fringing& fringing, const ColumnDistances& columns, float rowDistance,
                 std::uint32_t width, std::uint32_t nowhere, FringingRow row) {
    const FloatTag tag;
    const Lens& lens = fringing.lens;
    const Ints columnCount = hn::BitCast(IntTag(), hn::Set(hn::RebindToUnsigned<IntTag>(), width));
    const Ints outsideNumber =
        hn::BitCast(IntTag(), hn::Set(hn::RebindToUnsigned<IntTag>(), nowhere));
    for (std::size_t i = 0; i < columns.count(); i += hn::Lanes(tag)) {
        const Rays rays(hn::LoadU(tag, columns.data() + i), constant(rowDistance));
        const Floats length = sourceLength<fringingPower>(lens, rays.length);
        const auto pixels = [&](float factor) HWY_ATTR {
            const auto place = [&](Floats direction, float unit, float centre,
                                   float last) HWY_ATTR {
                const Floats offset = along(hn::Mul(constant(factor), direction), length, unit);
                return coordinates(clampPlace(hn::Add(offset, constant(centre)), constant(last)));
            };
            const Ints column = place(rays.directionX, lens.unitX, lens.centreX, fringing.lastX);
            const Ints line = place(rays.directionY, lens.unitY, lens.centreY, fringing.lastY);
            const auto outside = hn::Lt(hn::Or(column, line), hn::Zero(IntTag()));
            return hn::IfThenElse(outside, outsideNumber,
                                  hn::Add(hn::Mul(line, columnCount), column));
        };
        const std::size_t count = columns.count() - i;
        storeFirst(pixels(fringing.blueFactor), count, row.blue + i);
        storeFirst(pixels(1.0f), count, row.green + i);
        storeFirst(pixels(fringing.redFactor), count, row.red + i);
    }
}

using OffsetTag = hn::RebindToUnsigned<IntTag>;

/// Where the rows of a ring begin. What it does not hold, which nobody asks it for, is taken for
/// the row next to it, so that no offset can ever lead out of it.
class RowBegins {
public:
    explicit HWY_INLINE RowBegins(const RowRing& ring)
        : first_(constant(ring.first)),
          count_(constant(ring.count)),
          stride_(constant(ring.stride)),
          top_(constant(ring.top)),
          bottom_(constant(ring.bottom)) {}

    HWY_INLINE Ints of(Ints row) const {
        const Ints held = hn::Min(hn::Max(row, top_), bottom_);
        const auto slot = hn::BitCast(OffsetTag(), hn::Sub(held, first_));
        // Without a turn to take back the difference wraps.
        const auto turned = hn::Min(slot, hn::Sub(slot, hn::BitCast(OffsetTag(), count_)));
        return hn::Mul(hn::BitCast(IntTag(), turned), stride_);
    }

private:
    Ints first_;
    Ints count_;
    Ints stride_;
    Ints top_;
    Ints bottom_;
};

HWY_INLINE void storeRight(Ints offsets, std::size_t i, MirroredRun& run) {
    hn::StoreU(hn::BitCast(OffsetTag(), offsets), OffsetTag(), run.right + i);
}
HWY_INLINE void storeLeft(Ints offsets, std::size_t i, MirroredRun& run) {
    const OffsetTag tag;
    hn::StoreU(hn::Reverse(tag, hn::BitCast(tag, offsets)), tag,
               run.left + MirroredRun::capacity - i - hn::Lanes(tag));
}

template <int exponent>
void distortedRunRaised(const Lens& lens, const float* distances, std::size_t count,
                        float rowDistance, std::int32_t lastColumn, const RowRing& ring,
                        MirroredRun& run) {
    const FloatTag tag;
    const RowBegins begins(ring);
    const Floats centreX = constant(lens.centreX);
    const Floats centreY = constant(lens.centreY);
    const Ints last = constant(lastColumn);
    const auto column = [&](Floats x) HWY_ATTR {
        return hn::Min(hn::Max(truncateInRange(x), hn::Zero(IntTag())), last);
    };
    for (std::size_t i = 0; i < count; i += hn::Lanes(tag)) {
        const Rays rays(hn::LoadU(tag, distances + i), constant(rowDistance));
        const Floats length = sourceLength<exponent>(lens, rays.length);
        const Floats aside = along(rays.directionX, length, lens.unitX);
        const Floats y = hn::Add(along(rays.directionY, length, lens.unitY), centreY);
        const Ints begin = begins.of(truncateInRange(y));
        storeRight(hn::Add(begin, column(hn::Add(centreX, aside))), i, run);
        storeLeft(hn::Add(begin, column(hn::Sub(centreX, aside))), i, run);
    }
}

void distortedRun(const Lens& lens, const float* distances, std::size_t count, float rowDistance,
                  std::int32_t lastColumn, const RowRing& ring, MirroredRun& run) {
    if (lens.power == barrelPower) {
        distortedRunRaised<barrelPower>(lens, distances, count, rowDistance, lastColumn, ring, run);
    } else {
        distortedRunRaised<pincushionPower>(lens, distances, count, rowDistance, lastColumn, ring,
                                            run);
    }
}

// In two halves: of one long chain of instructions the processor sees little more than one round
// at a time.
void fringedRun(const Fringing& fringing, const float* distances, std::size_t count,
                float rowDistance, const RowRing& ring, FringingRun& run) {
    const FloatTag tag;
    const Lens& lens = fringing.lens;
    HWY_ALIGN float directionsX[MirroredRun::capacity];
    HWY_ALIGN float directionsY[MirroredRun::capacity];
    HWY_ALIGN float lengths[MirroredRun::capacity];
    for (std::size_t i = 0; i < count; i += hn::Lanes(tag)) {
        const Rays rays(hn::LoadU(tag, distances + i), constant(rowDistance));
        hn::Store(rays.directionX, tag, directionsX + i);
        hn::Store(rays.directionY, tag, directionsY + i);
        hn::Store(sourceLength<fringingPower>(lens, rays.length), tag, lengths + i);
    }
    const RowBegins begins(ring);
    const Floats centreX = constant(lens.centreX);
    const Floats centreY = constant(lens.centreY);
    const Floats lastX = constant(fringing.lastX);
    const auto column = [&](Floats x) HWY_ATTR {
        return truncateInRange(hn::Min(hn::Max(x, hn::Zero(FloatTag())), lastX));
    };
    const auto fetch = [&](float factor, MirroredRun& channel) HWY_ATTR {
        for (std::size_t i = 0; i < count; i += hn::Lanes(tag)) {
            const Floats length = hn::Load(tag, lengths + i);
            const auto offset = [&](const float* directions, float unit) HWY_ATTR {
                return along(hn::Mul(constant(factor), hn::Load(tag, directions + i)), length,
                             unit);
            };
            const Floats aside = offset(directionsX, lens.unitX);
            const Floats y = hn::Add(offset(directionsY, lens.unitY), centreY);
            const Ints begin = begins.of(truncateInRange(y));
            storeRight(hn::Add(begin, column(hn::Add(centreX, aside))), i, channel);
            storeLeft(hn::Add(begin, column(hn::Sub(centreX, aside))), i, channel);
        }
    };
    fetch(fringing.blueFactor, run.blue);
    fetch(1.0f, run.green);
    fetch(fringing.redFactor, run.red);
}

// Sources of neighbours are neighbours, too, but for a few: those come as vectors.
void fetchFringed(const std::uint8_t* originals, const std::uint32_t* firsts,
                  const std::uint32_t* seconds, const std::uint32_t* thirds, std::size_t count,
                  std::uint8_t* pixels) {
    const auto fetchOne = [&](std::size_t at) HWY_ATTR {
        std::uint32_t word;
        std::memcpy(&word, originals + std::size_t{4} * seconds[at], sizeof word);
        const std::uint32_t first = originals[std::size_t{4} * firsts[at]];
        const std::uint32_t third = originals[std::size_t{4} * thirds[at] + 2];
        word = (word & 0xFF00FF00) | third << 16 | first;
        std::memcpy(pixels + 4 * at, &word, sizeof word);
    };
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const OffsetTag tag;
    const hn::Repartition<std::uint8_t, OffsetTag> bytes;
    const std::size_t vector = hn::Lanes(tag);
    const auto steps = hn::Iota(tag, 0);
    const auto firstByte = hn::Set(tag, 0xFFu);
    const auto thirdByte = hn::Set(tag, 0xFF0000u);
    for (; i + vector <= count; i += vector) {
        const auto strays = [&](const std::uint32_t* numbers) HWY_ATTR {
            const auto expected = hn::Add(hn::Set(tag, numbers[i]), steps);
            return hn::Xor(hn::LoadU(tag, numbers + i), expected);
        };
        const auto from = [&](const std::uint32_t* numbers) HWY_ATTR {
            return hn::BitCast(tag, hn::LoadU(bytes, originals + std::size_t{4} * numbers[i]));
        };
        const auto anyStrays = hn::Or(hn::Or(strays(firsts), strays(seconds)), strays(thirds));
        if (hn::AllTrue(tag, hn::Eq(anyStrays, hn::Zero(tag)))) {
            const auto kept = hn::AndNot(hn::Or(firstByte, thirdByte), from(seconds));
            const auto taken =
                hn::Or(hn::And(from(firsts), firstByte), hn::And(from(thirds), thirdByte));
            hn::StoreU(hn::BitCast(bytes, hn::Or(kept, taken)), bytes, pixels + 4 * i);
        } else {
            for (std::size_t k = 0; k < vector; ++k) fetchOne(i + k);
        }
    }
#endif
    for (; i < count; ++i) fetchOne(i);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(placesOfRow);
HWY_EXPORT(pixelsOfRow);
HWY_EXPORT(distortedRun);
HWY_EXPORT(fringedRun);
HWY_EXPORT(fetchFringed);

void placesOfRow(const Lens& lens, const ColumnDistances& columns, float rowDistance,
                 Place* places) {
    HWY_DYNAMIC_DISPATCH(placesOfRow)(lens, columns, rowDistance, places);
}
void pixelsOfRow(const Fringing& fringing, const ColumnDistances& columns, float rowDistance,
                 std::uint32_t width, std::uint32_t nowhere, FringingRow row) {
    HWY_DYNAMIC_DISPATCH(pixelsOfRow)(fringing, columns, rowDistance, width, nowhere, row);
}
void distortedRun(const Lens& lens, const float* distances, std::size_t count, float rowDistance,
                  std::int32_t lastColumn, const RowRing& ring, MirroredRun& run) {
    HWY_DYNAMIC_DISPATCH(distortedRun)(lens, distances, count, rowDistance, lastColumn, ring, run);
}
void fringedRun(const Fringing& fringing, const float* distances, std::size_t count,
                float rowDistance, const RowRing& ring, FringingRun& run) {
    HWY_DYNAMIC_DISPATCH(fringedRun)(fringing, distances, count, rowDistance, ring, run);
}
void fetchFringed(const std::uint8_t* originals, const std::uint32_t* firsts,
                  const std::uint32_t* seconds, const std::uint32_t* thirds, std::size_t count,
                  std::uint8_t* pixels) {
    HWY_DYNAMIC_DISPATCH(fetchFringed)(originals, firsts, seconds, thirds, count, pixels);
}

}  // namespace keladjust
#endif
