// The four-neighbour Laplacian along a row.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/sharpen/SharpenRows.cpp"
#include <hwy/foreach_target.h>

#include "filters/sharpen/SharpenRows.h"

#include "arithmetic/Rounding.h"

#define KELADJUST_MOST_ROW_BYTES 64
#include "walks/RowVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

// Byte by byte: what the vectors below do for many at a time.
void sharpenRow(const std::uint8_t* above, const std::uint8_t* middle, const std::uint8_t* below,
                std::size_t bytes, std::size_t pixelBytes, float strength, std::uint8_t* target) {
    for (std::size_t i = 0; i < bytes; ++i) {
        if (pixelBytes == 4 && i % 4 == 3) continue;
        const std::uint8_t* const at = middle + i;
        const int difference =
            4 * *at - *(at - pixelBytes) - *(at + pixelBytes) - above[i] - below[i];
        target[i] =
            clampToByte(static_cast<float>(difference) * strength + static_cast<float>(*at));
    }
}

#else

HWY_INLINE Words differenceOf(Words middle, Words left, Words right, Words above, Words below) {
    const Words neighbours = hn::Add(hn::Add(left, right), hn::Add(above, below));
    return hn::Sub(hn::ShiftLeft<2>(middle), neighbours);
}

template <bool pixelsOfFour>
void sharpenRowOf(const std::uint8_t* above, const std::uint8_t* middle, const std::uint8_t* below,
                  std::size_t bytes, std::size_t pixelBytes, float strength, std::uint8_t* target) {
    const Floats factor = hn::Set(FloatTag(), strength);
    forEachVector(bytes, [&](std::size_t i, auto extent) HWY_ATTR {
        const Bytes centre = load(middle + i, extent);
        const WordPair m = toWords(centre);
        const WordPair l = toWords(load(middle + i - pixelBytes, extent));
        const WordPair r = toWords(load(middle + i + pixelBytes, extent));
        const WordPair a = toWords(load(above + i, extent));
        const WordPair b = toWords(load(below + i, extent));
        const auto difference =
            placesOf<pixelsOfFour>(WordPair{differenceOf(m.even, l.even, r.even, a.even, b.even),
                                            differenceOf(m.odd, l.odd, r.odd, a.odd, b.odd)});
        Places<pixelsOfFour> sharpened = placesOf<pixelsOfFour>(centre);
        for (std::size_t c = 0; c < sharpened.count; ++c) {
            sharpened.at[c] = clampToBytes(
                hn::Add(hn::Mul(toFloats(difference.at[c]), factor), toFloats(sharpened.at[c])));
        }
        store(joined(sharpened, load(target + i, extent)), target + i, extent);
    });
}

void sharpenRow(const std::uint8_t* above, const std::uint8_t* middle, const std::uint8_t* below,
                std::size_t bytes, std::size_t pixelBytes, float strength, std::uint8_t* target) {
    (pixelBytes == 4 ? sharpenRowOf<true> : sharpenRowOf<false>)(above, middle, below, bytes,
                                                                 pixelBytes, strength, target);
}

#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(sharpenRow);

void sharpenRow(const std::uint8_t* above, const std::uint8_t* middle, const std::uint8_t* below,
                std::size_t bytes, std::size_t pixelBytes, float strength, std::uint8_t* target) {
    HWY_DYNAMIC_DISPATCH(sharpenRow)(above, middle, below, bytes, pixelBytes, strength, target);
}

}  // namespace keladjust
#endif
