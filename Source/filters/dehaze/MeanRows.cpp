// Means over 15 x 15 bytes. The sum of a window fits 16 bits: 15 x 15 x 255 = 57375.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/dehaze/MeanRows.cpp"
#include <hwy/foreach_target.h>

#include "filters/dehaze/MeanRows.h"

#include <hwy/highway.h>

#include "walks/WordProducts-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using SumTag = hn::CappedTag<std::uint16_t, 16>;
using ByteTag = hn::Rebind<std::uint8_t, SumTag>;

// Calls `body` for the first place of every vector and returns where the rest begins.
template <class Body>
HWY_INLINE std::size_t forEachVector(std::size_t count, Body body) {
    const std::size_t vector = hn::Lanes(SumTag());
    std::size_t i = 0;
    for (; i + vector <= count; i += vector) body(i);
    return i;
}

void addToColumns(const std::uint8_t* row, std::size_t width, std::uint16_t* sums) {
    const SumTag tag;
    std::size_t x = forEachVector(width, [&](std::size_t i) HWY_ATTR {
        const auto bytes = hn::PromoteTo(tag, hn::LoadU(ByteTag(), row + i));
        hn::StoreU(hn::Add(hn::LoadU(tag, sums + i), bytes), tag, sums + i);
    });
    for (; x < width; ++x) sums[x] = static_cast<std::uint16_t>(sums[x] + row[x]);
}

void exchangeInColumns(const std::uint8_t* added, const std::uint8_t* taken, std::size_t width,
                       std::uint16_t* sums) {
    const SumTag tag;
    std::size_t x = forEachVector(width, [&](std::size_t i) HWY_ATTR {
        const auto more = hn::PromoteTo(tag, hn::LoadU(ByteTag(), added + i));
        const auto less = hn::PromoteTo(tag, hn::LoadU(ByteTag(), taken + i));
        hn::StoreU(hn::Add(hn::LoadU(tag, sums + i), hn::Sub(more, less)), tag, sums + i);
    });
    for (; x < width; ++x) sums[x] = static_cast<std::uint16_t>(sums[x] + added[x] - taken[x]);
}

void takeFromColumns(const std::uint8_t* row, std::size_t width, std::uint16_t* sums) {
    const SumTag tag;
    std::size_t x = forEachVector(width, [&](std::size_t i) HWY_ATTR {
        const auto bytes = hn::PromoteTo(tag, hn::LoadU(ByteTag(), row + i));
        hn::StoreU(hn::Sub(hn::LoadU(tag, sums + i), bytes), tag, sums + i);
    });
    for (; x < width; ++x) sums[x] = static_cast<std::uint16_t>(sums[x] - row[x]);
}

// A division by the bytes of a window that is not cropped at the sides, done by the upper half of a
// product and a shift: exact for every sum that the window can have.
struct Division {
    std::uint16_t multiplier;
    int shift;
};

constexpr Division divisionBy(std::uint32_t count) {
    int shift = 0;
    while (((1u << (17 + shift)) + count - 1) / count < (1u << 16)) ++shift;
    return {static_cast<std::uint16_t>(((1u << (16 + shift)) + count - 1) / count), shift};
}

constexpr bool dividesExactly(std::uint32_t count) {
    const Division division = divisionBy(count);
    const std::uint32_t power = 1u << (16 + division.shift);
    // By how much count * multiplier exceeds the power of two; over the largest sum it must not
    // reach the next whole number.
    const std::uint64_t excess = std::uint64_t{division.multiplier} * count - power;
    return excess * (count * 255) < power;
}

constexpr bool everyWindowDividesExactly() {
    for (std::uint32_t rows = 1; rows <= meanSide; ++rows) {
        if (!dividesExactly(rows * meanSide)) return false;
    }
    return true;
}
static_assert(everyWindowDividesExactly());

void meansInside(const std::uint16_t* sums, std::size_t count, std::uint32_t rows,
                 std::uint16_t* triples, std::uint8_t* means) {
    static_assert(meanSide == 15);
    const SumTag tag;
    const auto sumOf = [&](const std::uint16_t* of, std::size_t step, std::size_t terms) HWY_ATTR {
        auto sum = hn::LoadU(tag, of);
        for (std::size_t k = 1; k < terms; ++k) sum = hn::Add(sum, hn::LoadU(tag, of + k * step));
        return sum;
    };
    // Fifteen columns as five times three.
    for (std::size_t x = 0; x < count + 12; x += hn::Lanes(tag)) {
        hn::StoreU(sumOf(sums + x, 1, 3), tag, triples + x);
    }
    const Division division = divisionBy(rows * meanSide);
    const auto multiplier = held(hn::Set(tag, division.multiplier));
    const hn::RebindToSigned<SumTag> signedTag;
    std::size_t x = forEachVector(count, [&](std::size_t i) HWY_ATTR {
        const auto quotient =
            hn::ShiftRightSame(upperProduct(sumOf(triples + i, 3, 5), multiplier), division.shift);
        hn::StoreU(hn::DemoteTo(ByteTag(), hn::BitCast(signedTag, quotient)), ByteTag(), means + i);
    });
    for (; x < count; ++x) {
        std::uint32_t sum = 0;
        for (std::size_t k = 0; k < 15; k += 3) sum += triples[x + k];
        means[x] = static_cast<std::uint8_t>(sum / (rows * meanSide));
    }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(addToColumns);
HWY_EXPORT(exchangeInColumns);
HWY_EXPORT(takeFromColumns);
HWY_EXPORT(meansInside);

void addToColumns(const std::uint8_t* row, std::size_t width, std::uint16_t* sums) {
    HWY_DYNAMIC_DISPATCH(addToColumns)(row, width, sums);
}
void exchangeInColumns(const std::uint8_t* added, const std::uint8_t* taken, std::size_t width,
                       std::uint16_t* sums) {
    HWY_DYNAMIC_DISPATCH(exchangeInColumns)(added, taken, width, sums);
}
void takeFromColumns(const std::uint8_t* row, std::size_t width, std::uint16_t* sums) {
    HWY_DYNAMIC_DISPATCH(takeFromColumns)(row, width, sums);
}
void meansInside(const std::uint16_t* sums, std::size_t count, std::uint32_t rows,
                 std::uint16_t* triples, std::uint8_t* means) {
    HWY_DYNAMIC_DISPATCH(meansInside)(sums, count, rows, triples, means);
}

}  // namespace keladjust
#endif
