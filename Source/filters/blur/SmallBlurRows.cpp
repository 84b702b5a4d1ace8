// The two passes of a Stack Blur of radius 1. Its sums a + 2b + c, of which the scale takes exactly
// a quarter, need no more than bytes: rounding down twice, (a + c) / 2 and the half of that and b,
// leaves what rounding down once does. Vectors have a mean of bytes that rounds up, which rounds
// down on complements; so between load and store every byte is its complement.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/blur/SmallBlurRows.cpp"
#include <hwy/foreach_target.h>

#include "filters/blur/SmallBlurRows.h"

#include <algorithm>

#define KELADJUST_MOST_ROW_BYTES 64
#include "walks/RowVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

// Byte by byte: what the vectors below do for many at a time.

// A quarter of the sum of what the complements stand for. Colour of premultiplied pixels never
// exceeds alpha, the limit, and alpha stays: for complements, a maximum.
std::uint8_t weighted(std::uint8_t before, std::uint8_t middle, std::uint8_t after,
                      std::uint8_t limit, std::size_t i, std::size_t pixelBytes) {
    if (pixelBytes == 4 && i % 4 == 3) return middle;
    const int sum = 4 * 255 - before - 2 * middle - after;
    const auto mean = static_cast<std::uint8_t>(255 - sum / 4);
    return pixelBytes == 4 ? std::max(mean, limit) : mean;
}

void complementBrightened(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                          std::uint16_t share, std::uint8_t* out) {
    for (std::size_t i = 0; i < bytes; ++i) {
        const bool alpha = pixelBytes == 4 && i % 4 == 3;
        const int added = alpha ? 0 : row[i] * share >> 16;
        out[i] = static_cast<std::uint8_t>(255 - std::min(255, row[i] + added));
    }
}

void smallBlurRow(const BlurRow& row, std::size_t bytes, std::size_t pixelBytes) {
    const auto at = [&](std::size_t i) {
        return static_cast<std::uint8_t>(row.complement ? 255 - row.bytes[i] : row.bytes[i]);
    };
    for (std::size_t i = 0; i < bytes; ++i) {
        const std::uint8_t before = at(i < pixelBytes ? i : i - pixelBytes);
        const std::uint8_t after = at(i + pixelBytes < bytes ? i + pixelBytes : i);
        const std::uint8_t limit = at(pixelBytes == 4 ? i | 3 : i);
        row.below[i] = weighted(before, at(i), after, limit, i, pixelBytes);
    }
    if (row.target == nullptr) return;
    for (std::size_t i = 0; i < bytes; ++i) {
        const std::uint8_t limit = row.middle[pixelBytes == 4 ? i | 3 : i];
        row.target[i] = static_cast<std::uint8_t>(
            255 - weighted(row.above[i], row.middle[i], row.below[i], limit, i, pixelBytes));
    }
}

#else

HWY_INLINE Bytes weighted(Bytes before, Bytes middle, Bytes after, bool premultiplied) {
    const Bytes mean = hn::AverageRound(hn::AverageRound(before, after), middle);
    if (!premultiplied) return mean;
    return hn::Max(hn::And(mean, everyFour(0x00FFFFFF)), fourthBytes(middle));
}

void complementBrightened(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                          std::uint16_t share, std::uint8_t* out) {
    const Words even = hn::Set(WordTag(), share);
    // Every second odd byte of a pixel of four is alpha and stays.
    const Words odd =
        pixelBytes == 4 ? hn::BitCast(WordTag(), hn::Set(QuadTag(), std::uint32_t{share})) : even;
    forEachVector(bytes, [&](std::size_t i, auto extent) HWY_ATTR {
        const Bytes in = load(row + i, extent);
        const WordPair words = toWords(in);
        const Bytes added =
            toBytes({upperProductOfBytes(words.even, even), upperProductOfBytes(words.odd, odd)});
        store(hn::SaturatedSub(hn::Not(in), added), out + i, extent);
    });
}

/// Some bytes of a row and those one pixel before and behind them.
struct Neighbours {
    Bytes before;
    Bytes middle;
    Bytes after;
};

HWY_INLINE Neighbours neighboursAt(const std::uint8_t* bytes, std::size_t pixelBytes) {
    return {load(bytes - pixelBytes, Whole{}), load(bytes, Whole{}),
            load(bytes + pixelBytes, Whole{})};
}

// Where the row ends within their reach: its end pixels are repeated.
Neighbours neighboursAtEnd(const std::uint8_t* row, std::size_t i, std::size_t bytes,
                           std::size_t pixelBytes) {
    constexpr std::size_t mostPixelBytes = 4;
    std::uint8_t around[hn::MaxLanes(RowTag()) + 3 * mostPixelBytes] = {};
    const std::size_t first = i - std::min(i, pixelBytes);
    const std::size_t end = std::min(bytes, i + hn::Lanes(RowTag()) + pixelBytes);
    std::uint8_t* const middle = around + pixelBytes;
    std::uint8_t* const behind = middle + (end - i);
    std::memcpy(middle - (i - first), row + first, end - first);
    if (i < pixelBytes) std::memcpy(around, middle, pixelBytes);
    if (end == bytes) std::memcpy(behind, behind - pixelBytes, pixelBytes);
    return neighboursAt(middle, pixelBytes);
}

/// Calls `body(i, extent, neighbours)` for every vector of a row that begins at byte i.
template <class Body>
HWY_INLINE void forEachNeighbours(const std::uint8_t* row, std::size_t bytes,
                                  std::size_t pixelBytes, Body body) {
    const std::size_t vector = hn::Lanes(RowTag());
    const auto atEnd = [&](std::size_t i) HWY_ATTR {
        const Neighbours neighbours = neighboursAtEnd(row, i, bytes, pixelBytes);
        if (i + vector <= bytes) {
            body(i, Whole{}, neighbours);
        } else {
            body(i, Part{bytes - i}, neighbours);
        }
    };
    atEnd(0);
    std::size_t i = vector;
    for (; i + vector + pixelBytes <= bytes; i += vector) {
        body(i, Whole{}, neighboursAt(row + i, pixelBytes));
    }
    for (; i < bytes; i += vector) atEnd(i);
}

template <bool complement>
void smallBlurRowOf(const BlurRow& row, std::size_t bytes, std::size_t pixelBytes) {
    const bool premultiplied = pixelBytes == 4;
    const auto complements = [](Bytes v) HWY_ATTR { return complement ? hn::Not(v) : v; };
    const auto along = [&](std::size_t i, auto extent, const Neighbours& of) HWY_ATTR {
        const Bytes blurred = weighted(complements(of.before), complements(of.middle),
                                       complements(of.after), premultiplied);
        store(blurred, row.below + i, extent);
        return blurred;
    };
    if (row.target == nullptr) {
        forEachNeighbours(row.bytes, bytes, pixelBytes, along);
        return;
    }
    forEachNeighbours(row.bytes, bytes, pixelBytes,
                      [&](std::size_t i, auto extent, const Neighbours& of) HWY_ATTR {
                          const Bytes below = along(i, extent, of);
                          const Bytes above = load(row.above + i, extent);
                          const Bytes middle = load(row.middle + i, extent);
                          const Bytes across = weighted(above, middle, below, premultiplied);
                          store(hn::Not(across), row.target + i, extent);
                      });
}

void smallBlurRow(const BlurRow& row, std::size_t bytes, std::size_t pixelBytes) {
    (row.complement ? smallBlurRowOf<true> : smallBlurRowOf<false>)(row, bytes, pixelBytes);
}

#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(complementBrightened);
HWY_EXPORT(smallBlurRow);

void complementBrightened(const std::uint8_t* row, std::size_t bytes, std::size_t pixelBytes,
                          std::uint16_t share, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(complementBrightened)(row, bytes, pixelBytes, share, out);
}
void smallBlurRow(const BlurRow& row, std::size_t bytes, std::size_t pixelBytes) {
    HWY_DYNAMIC_DISPATCH(smallBlurRow)(row, bytes, pixelBytes);
}

}  // namespace keladjust
#endif
