// The two passes of a Stack Blur of radius 1. Its sums a + 2b + c, of which the scale takes exactly
// a quarter, need no more than bytes: rounding down twice, (a + c) / 2 and the half of that and b,
// leaves what rounding down once does. Vectors have a mean of bytes that rounds up, which rounds
// down on complements; so between load and store every byte is its complement.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/rows/SmallBlur.cpp"
#include <hwy/foreach_target.h>

#include "filters/rows/RowVectors-inl.h"
#include "filters/rows/Rows.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

// Byte by byte: what the vectors below do for many at a time.

// A quarter of the sum of what the complements stand for. Colour of premultiplied pixels never
// exceeds alpha, and alpha stays: for complements, a maximum.
std::uint8_t weighted(const std::uint8_t* before, const std::uint8_t* middle,
                      const std::uint8_t* after, std::size_t i, std::size_t pixelBytes) {
    if (pixelBytes == 4 && i % 4 == 3) return middle[i];
    const int sum = 4 * 255 - before[i] - 2 * middle[i] - after[i];
    const auto mean = static_cast<std::uint8_t>(255 - sum / 4);
    return pixelBytes == 4 ? std::max(mean, middle[i | 3]) : mean;
}

void complement(const std::uint8_t* row, std::size_t bytes, std::uint8_t* out) {
    for (std::size_t i = 0; i < bytes; ++i) out[i] = static_cast<std::uint8_t>(255 - row[i]);
}

void complementScaled(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                      ByteScale gain, std::uint8_t* out) {
    for (std::size_t i = 0; i < bytes; ++i) {
        const bool alpha = pixelBytes == 4 && i % 4 == 3;
        out[i] = static_cast<std::uint8_t>(255 - (alpha ? row[i] : gain(row[i])));
    }
}

void smallBlurAlong(const std::uint8_t* complements, std::size_t bytes, std::size_t pixelBytes,
                    std::uint8_t* out) {
    for (std::size_t i = 0; i < bytes; ++i) {
        out[i] = weighted(complements - pixelBytes, complements, complements + pixelBytes, i,
                          pixelBytes);
    }
}

void smallBlurAcross(const std::uint8_t* above, const std::uint8_t* middle,
                     const std::uint8_t* below, std::size_t bytes, std::size_t pixelBytes,
                     std::uint8_t* out) {
    for (std::size_t i = 0; i < bytes; ++i) {
        out[i] = static_cast<std::uint8_t>(255 - weighted(above, middle, below, i, pixelBytes));
    }
}

#else

HWY_INLINE Bytes weighted(Bytes before, Bytes middle, Bytes after, bool premultiplied) {
    const Bytes mean = hn::AverageRound(hn::AverageRound(before, after), middle);
    if (!premultiplied) return mean;
    return hn::Max(hn::And(mean, everyFour(0x00FFFFFF)), fourthBytes(middle));
}

void complementScaled(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                      ByteScale gain, std::uint8_t* out) {
    const Words whole = hn::Set(WordTag(), gain.whole);
    const Words fraction = hn::Set(WordTag(), gain.fraction);
    // Every second odd byte of a pixel of four is alpha and stays.
    const Words kept = hn::BitCast(WordTag(), hn::Set(QuadTag(), 0xFFFF0000u));
    const bool keepsFourth = pixelBytes == 4;
    const Words oddWhole = keepsFourth ? hn::Or(hn::AndNot(kept, whole),
                                                hn::And(kept, hn::Set(WordTag(), std::uint16_t{1})))
                                       : whole;
    const Words oddFraction = keepsFourth ? hn::AndNot(kept, fraction) : fraction;
    forEachVector(bytes, [&](std::size_t i, auto extent) HWY_ATTR {
        const WordPair in = toWords(load(row + i, extent));
        const WordPair gained{scaled(in.even, whole, fraction),
                              scaled(in.odd, oddWhole, oddFraction)};
        store(hn::Not(toBytes(gained)), out + i, extent);
    });
}

void complement(const std::uint8_t* row, std::size_t bytes, std::uint8_t* out) {
    forEachVector(bytes, [&](std::size_t i, auto extent)
                             HWY_ATTR { store(hn::Not(load(row + i, extent)), out + i, extent); });
}

void smallBlurAlong(const std::uint8_t* complements, std::size_t bytes, std::size_t pixelBytes,
                    std::uint8_t* out) {
    const bool premultiplied = pixelBytes == 4;
    forEachVector(bytes, [&](std::size_t i, auto extent) HWY_ATTR {
        const std::uint8_t* const at = complements + i;
        store(weighted(load(at - pixelBytes, extent), load(at, extent),
                       load(at + pixelBytes, extent), premultiplied),
              out + i, extent);
    });
}

void smallBlurAcross(const std::uint8_t* above, const std::uint8_t* middle,
                     const std::uint8_t* below, std::size_t bytes, std::size_t pixelBytes,
                     std::uint8_t* out) {
    const bool premultiplied = pixelBytes == 4;
    forEachVector(bytes, [&](std::size_t i, auto extent) HWY_ATTR {
        store(hn::Not(weighted(load(above + i, extent), load(middle + i, extent),
                               load(below + i, extent), premultiplied)),
              out + i, extent);
    });
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(complement);
HWY_EXPORT(complementScaled);
HWY_EXPORT(smallBlurAlong);
HWY_EXPORT(smallBlurAcross);

void rows::complement(const std::uint8_t* row, std::size_t bytes, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(complement)(row, bytes, out);
}
void rows::complementScaled(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                            ByteScale gain, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(complementScaled)(row, bytes, pixelBytes, gain, out);
}
void rows::smallBlurAlong(const std::uint8_t* complements, std::size_t bytes,
                          std::size_t pixelBytes, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(smallBlurAlong)(complements, bytes, pixelBytes, out);
}
void rows::smallBlurAcross(const std::uint8_t* above, const std::uint8_t* middle,
                           const std::uint8_t* below, std::size_t bytes, std::size_t pixelBytes,
                           std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(smallBlurAcross)(above, middle, below, bytes, pixelBytes, out);
}

}  // namespace keladjust
#endif
