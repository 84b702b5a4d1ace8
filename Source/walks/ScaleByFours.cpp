// Bytes scaled by the gain of their place in a group of four.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "walks/ScaleByFours.cpp"
#include <hwy/foreach_target.h>

#include "walks/ScaleByFours.h"

#include "walks/RowVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

void scaleByFours(std::uint8_t* row, std::size_t bytes, const std::array<ByteScale, 4>& gains) {
    for (std::size_t i = 0; i < bytes; ++i) row[i] = gains[i % 4](row[i]);
}

#else

// Words of which every second one is the first.
HWY_INLINE Words inTurn(std::uint16_t first, std::uint16_t second) {
    return hn::BitCast(WordTag(), hn::Set(QuadTag(), std::uint32_t{second} << 16 | first));
}

void scaleByFours(std::uint8_t* row, std::size_t bytes, const std::array<ByteScale, 4>& gains) {
    const Words evenWhole = inTurn(gains[0].whole, gains[2].whole);
    const Words evenFraction = inTurn(gains[0].fraction, gains[2].fraction);
    const Words oddWhole = inTurn(gains[1].whole, gains[3].whole);
    const Words oddFraction = inTurn(gains[1].fraction, gains[3].fraction);
    forEachVector(bytes, [&](std::size_t i, auto extent) HWY_ATTR {
        const WordPair in = toWords(load(row + i, extent));
        const WordPair out{scaled(in.even, evenWhole, evenFraction),
                           scaled(in.odd, oddWhole, oddFraction)};
        store(toBytes(out), row + i, extent);
    });
}

#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(scaleByFours);

void scaleByFours(std::uint8_t* row, std::size_t bytes, const std::array<ByteScale, 4>& gains) {
    HWY_DYNAMIC_DISPATCH(scaleByFours)(row, bytes, gains);
}

}  // namespace keladjust
#endif
