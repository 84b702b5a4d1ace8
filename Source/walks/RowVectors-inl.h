// Rows of bytes as vectors. Included once for every instruction set, like the row kernels that use
// it; hence the guard that toggles.

#if defined(KELADJUST_WALKS_ROWVECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_WALKS_ROWVECTORS_INL_H
#undef KELADJUST_WALKS_ROWVECTORS_INL_H
#else
#define KELADJUST_WALKS_ROWVECTORS_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "arithmetic/HeldVector-inl.h"
#include "walks/ByteLookup-inl.h"
#include "walks/FloatVectors-inl.h"
#include "walks/WordProducts-inl.h"

// A single lane makes no pixel: there the kernels go byte by byte in plain terms.
#if HWY_TARGET != HWY_SCALAR

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {  // of each file its own, since files differ in how long the vectors are

namespace hn = hwy::HWY_NAMESPACE;

// At most 32 bytes, eight pixels of four, unless a file that computes much with what it loads says
// so before it includes this: wider vectors would only wait longer for memory.
#ifndef KELADJUST_MOST_ROW_BYTES
#define KELADJUST_MOST_ROW_BYTES 32
#endif
using RowTag = hn::CappedTag<std::uint8_t, KELADJUST_MOST_ROW_BYTES>;
using WordTag = hn::Repartition<std::uint16_t, RowTag>;
using QuadTag = hn::Repartition<std::uint32_t, RowTag>;
using SignedQuadTag = hn::RebindToSigned<QuadTag>;
using FloatTag = hn::RebindToFloat<QuadTag>;
using Bytes = hn::Vec<RowTag>;
using Words = hn::Vec<WordTag>;
using Quads = hn::Vec<QuadTag>;
using SignedQuads = hn::Vec<SignedQuadTag>;
using Floats = hn::Vec<FloatTag>;

/// How much of a vector lies in the row: all of it, or its first bytes.
struct Whole {};
struct Part {
    std::size_t bytes;
};

/// Calls `body(i, extent)` for every vector of a row that begins at byte i.
template <class Body>
HWY_INLINE void forEachVector(std::size_t bytes, Body body) {
    const std::size_t vector = hn::Lanes(RowTag());
    std::size_t i = 0;
    for (; i + vector <= bytes; i += vector) body(i, Whole{});
    if (i < bytes) body(i, Part{bytes - i});
}

HWY_INLINE Bytes load(const std::uint8_t* from, Whole) {
    return hn::LoadU(RowTag(), from);
}
HWY_INLINE Bytes load(const std::uint8_t* from, Part part) {
    HWY_ALIGN std::uint8_t bytes[hn::MaxLanes(RowTag())] = {};
    std::memcpy(bytes, from, part.bytes);
    return hn::Load(RowTag(), bytes);
}
HWY_INLINE void store(Bytes v, std::uint8_t* to, Whole) {
    hn::StoreU(v, RowTag(), to);
}
HWY_INLINE void store(Bytes v, std::uint8_t* to, Part part) {
    HWY_ALIGN std::uint8_t bytes[hn::MaxLanes(RowTag())];
    hn::Store(v, RowTag(), bytes);
    std::memcpy(to, bytes, part.bytes);
}

/// The bytes at even and at odd places as words, and back. Cheaper than the lower and the upper
/// half, and no byte leaves its place.
struct WordPair {
    Words even;
    Words odd;
};
HWY_INLINE WordPair toWords(Bytes v) {
    const Words words = hn::BitCast(WordTag(), v);
    const Words lower = held(hn::Set(WordTag(), std::uint16_t{255}));
    return {hn::And(words, lower), hn::ShiftRight<8>(words)};
}
/// Words of 0..255.
HWY_INLINE Bytes toBytes(const WordPair& words) {
    return hn::BitCast(RowTag(), hn::Or(words.even, hn::ShiftLeft<8>(words.odd)));
}

/// Words of 0..255 as ByteScale scales them.
HWY_INLINE Words scaled(Words in, Words whole, Words fraction) {
    const Words out = hn::Add(hn::Mul(in, whole), upperProductOfBytes(in, fraction));
    return hn::Min(out, held(hn::Set(WordTag(), std::uint16_t{255})));
}

/// Four bytes in every group of four.
HWY_INLINE Bytes everyFour(std::uint32_t bytes) {
    return hn::BitCast(RowTag(), held(hn::Set(QuadTag(), bytes)));
}

/// The fourth byte of every pixel of four, in all of its places.
HWY_INLINE Bytes fourthBytes(Bytes pixels) {
    HWY_ALIGN static constexpr std::uint8_t places[16] = {3,  3,  3,  3,  7,  7,  7,  7,
                                                          11, 11, 11, 11, 15, 15, 15, 15};
    return bytesAtPlaces(pixels, hn::LoadDup128(RowTag(), places));
}

/// The bytes of every group of four as quads, each place a vector of its own. Of pixels of four the
/// last place is alpha, which no stage changes. Made by braces with a value for every place: what a
/// vector holds that is made of nothing differs between processors, and zero it need not be.
template <bool pixelsOfFour>
struct Places {
    static constexpr std::size_t count = pixelsOfFour ? 3 : 4;
    SignedQuads at[count];
};

template <bool pixelsOfFour>
HWY_INLINE Places<pixelsOfFour> placesOf(Bytes bytes) {
    const SignedQuadTag tag;
    const SignedQuads byte = held(hn::Set(tag, 255));
    const Quads quads = hn::BitCast(QuadTag(), bytes);
    const SignedQuads first = hn::And(hn::BitCast(tag, quads), byte);
    const SignedQuads second = hn::And(hn::BitCast(tag, hn::ShiftRight<8>(quads)), byte);
    const SignedQuads third = hn::And(hn::BitCast(tag, hn::ShiftRight<16>(quads)), byte);
    if constexpr (pixelsOfFour) {
        return {{first, second, third}};
    } else {
        return {{first, second, third, hn::BitCast(tag, hn::ShiftRight<24>(quads))}};
    }
}

/// Of signed words.
template <bool pixelsOfFour>
HWY_INLINE Places<pixelsOfFour> placesOf(const WordPair& words) {
    const SignedQuads even = hn::BitCast(SignedQuadTag(), words.even);
    const SignedQuads odd = hn::BitCast(SignedQuadTag(), words.odd);
    const SignedQuads first = hn::ShiftRight<16>(hn::ShiftLeft<16>(even));
    const SignedQuads second = hn::ShiftRight<16>(hn::ShiftLeft<16>(odd));
    const SignedQuads third = hn::ShiftRight<16>(even);
    if constexpr (pixelsOfFour) {
        return {{first, second, third}};
    } else {
        return {{first, second, third, hn::ShiftRight<16>(odd)}};
    }
}

/// Places of 0..255 back in one vector; alpha from `pixels`.
template <bool pixelsOfFour>
HWY_INLINE Bytes joined(const Places<pixelsOfFour>& places, Bytes pixels) {
    const SignedQuads lower = hn::Or(places.at[0], hn::ShiftLeft<8>(places.at[1]));
    const SignedQuads colour = hn::Or(lower, hn::ShiftLeft<16>(places.at[2]));
    if constexpr (pixelsOfFour) {
        return hn::Or(hn::BitCast(RowTag(), colour), hn::And(pixels, everyFour(0xFF000000)));
    } else {
        return hn::BitCast(RowTag(), hn::Or(colour, hn::ShiftLeft<24>(places.at[3])));
    }
}

HWY_INLINE Floats toFloats(SignedQuads values) {
    return hn::ConvertTo(FloatTag(), values);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif

#endif
