// Pixels as vectors, from the bytes of a PackedSpan, and table colours of a ColourRun. Included
// once for every instruction set, like the kernels that use it; hence the guard that toggles.

#if defined(KELADJUST_WALKS_PIXELVECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_WALKS_PIXELVECTORS_INL_H
#undef KELADJUST_WALKS_PIXELVECTORS_INL_H
#else
#define KELADJUST_WALKS_PIXELVECTORS_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

#include "ImageFormat/PackedSpan.h"
#include "arithmetic/HeldVector-inl.h"
#include "arithmetic/Reciprocal.h"
#include "walks/ByteLookup-inl.h"
#include "walks/ColourKernel.h"
#include "walks/FloatVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// One float, one whole number and one byte a pixel, the same number of each. Multiplications and
// additions are never fused, so every instruction set gives the same bytes.
using FloatTag = hn::ScalableTag<float>;
using IntTag = hn::RebindToSigned<FloatTag>;
using ByteTag = hn::Rebind<std::uint8_t, FloatTag>;
using Floats = hn::Vec<FloatTag>;
using Ints = hn::Vec<IntTag>;
using FloatMask = hn::Mask<FloatTag>;

HWY_INLINE Floats constant(float value) {
    return held(hn::Set(FloatTag(), value));
}
HWY_INLINE Ints constant(std::int32_t value) {
    return held(hn::Set(IntTag(), value));
}

HWY_INLINE Ints loadInts(const std::uint8_t* lane) {
    return hn::PromoteTo(IntTag(), hn::Load(ByteTag(), lane));
}
HWY_INLINE Floats toFloats(Ints values) {
    return hn::ConvertTo(FloatTag(), values);
}
HWY_INLINE Floats loadFloats(const std::uint8_t* lane) {
    return toFloats(loadInts(lane));
}

/// Stores whole numbers, clamped to 0..255.
HWY_INLINE void storeClamped(Ints values, std::uint8_t* lane) {
    // On some instruction sets DemoteTo takes 32768 and the next 255 numbers for 0..255.
    const Ints bounded = hn::Min(values, constant(std::int32_t{255}));
    hn::Store(hn::DemoteTo(ByteTag(), bounded), ByteTag(), lane);
}

/// The rounded quotient by a constant, as hn::Div() gives it; of zero or of numbers between 2^-80
/// and 2^80. Multiplying by a reciprocal in two parts takes less than half as long as a division. A
/// zero comes out without its sign.
template <int divisor>
HWY_INLINE Floats quotientBy(Floats values) {
#if HWY_NATIVE_FMA
    const Floats rest = hn::Mul(values, constant(Reciprocal<divisor>::low));
    return hn::MulAdd(values, constant(Reciprocal<divisor>::high), rest);
#else
    return hn::Div(values, constant(static_cast<float>(divisor)));
#endif
}

/// Truncated toward zero, saturating at the ends of 32 bits; NaN gives 0.
HWY_INLINE Ints truncateToInts(Floats values) {
    const Floats numbers = hn::IfThenElseZero(hn::Eq(values, values), values);
    return hn::ConvertTo(IntTag(), numbers);
}

/// Pixels that go through the first half of a kernel before they go through the second. A long
/// kernel is one long chain of instructions, of which the processor sees little more than one at a
/// time; of each half it sees several and works on them side by side.
constexpr std::size_t runLength = 256;

/// Calls `body(i)` for the first pixel of every vector of the span. The last one may run past the
/// pixels that the span counts, but not past its memory.
template <class Span, class Body>
HWY_INLINE void forEachVector(const Span& span, Body body) {
    const std::size_t step = hn::Lanes(FloatTag());
    for (std::size_t i = 0; i < span.count; i += step) body(i);
}

/// The same for the pixels from number `first` on, runLength of them or what there is.
template <class Span, class Body>
HWY_INLINE void forEachVectorOfRun(const Span& span, std::size_t first, Body body) {
    const std::size_t step = hn::Lanes(FloatTag());
    const std::size_t end = HWY_MIN(first + runLength, span.count);
    for (std::size_t i = first; i < end; i += step) body(i);
}

/// The three channels of some pixels.
template <class Vector>
struct Channels {
    Vector red;
    Vector green;
    Vector blue;
};

template <class Vector, class Map>
HWY_INLINE auto mapChannels(const Channels<Vector>& c, Map map) -> Channels<decltype(map(c.red))> {
    return {map(c.red), map(c.green), map(c.blue)};
}

HWY_INLINE Channels<Floats> chosen(FloatMask mask, const Channels<Floats>& yes,
                                   const Channels<Floats>& no) {
    return {hn::IfThenElse(mask, yes.red, no.red), hn::IfThenElse(mask, yes.green, no.green),
            hn::IfThenElse(mask, yes.blue, no.blue)};
}

template <class Vector>
HWY_INLINE Vector largestOf(const Channels<Vector>& c) {
    return hn::Max(c.red, hn::Max(c.green, c.blue));
}
template <class Vector>
HWY_INLINE Vector smallestOf(const Channels<Vector>& c) {
    return hn::Min(c.red, hn::Min(c.green, c.blue));
}

#if HWY_TARGET == HWY_SCALAR

HWY_INLINE Channels<Ints> loadIntChannels(const PackedSpan& span, std::size_t i) {
    const std::uint8_t* const pixel = span.pixels + 4 * i;
    return {loadInts(pixel + 2), loadInts(pixel + 1), loadInts(pixel)};
}
HWY_INLINE void storeClamped(const Channels<Ints>& c, PackedSpan& span, std::size_t i) {
    std::uint8_t* const pixel = span.pixels + 4 * i;
    storeClamped(c.red, pixel + 2);
    storeClamped(c.green, pixel + 1);
    storeClamped(c.blue, pixel);
}

#else

// The bytes of as many pixels as a vector has floats.
using PackedTag = hn::Repartition<std::uint8_t, FloatTag>;
using Packed = hn::Vec<PackedTag>;
using UnsignedTag = hn::RebindToUnsigned<IntTag>;

/// One byte of each pixel as a whole number.
template <std::uint8_t byte>
HWY_INLINE Ints byteOfPixels(Packed pixels) {
#if HWY_TARGET == HWY_WASM
    // A look-up is two steps on x86, and its places are a third.
    const auto from = hn::ShiftRight<8 * byte>(hn::BitCast(UnsignedTag(), pixels));
    const Ints whole = hn::BitCast(IntTag(), from);
    return byte == 3 ? whole : hn::And(whole, constant(std::int32_t{255}));
#else
    constexpr std::uint8_t none = noByte;
    HWY_ALIGN static constexpr std::uint8_t places[] = {
        byte,     none, none, none, byte + 4,  none, none, none,
        byte + 8, none, none, none, byte + 12, none, none, none};
    const auto table = hn::LoadDup128(PackedTag(), places);
    return hn::BitCast(IntTag(), bytesAtPlaces(pixels, table));
#endif
}

using HalfTag = hn::Repartition<std::int16_t, FloatTag>;
using Halves = hn::Vec<HalfTag>;

/// Both vectors' numbers clamped to 0..255, those of one after those of the other in each 16 bytes.
HWY_INLINE Packed clampToPacked(Halves first, Halves second) {
#if HWY_TARGET <= HWY_AVX3
    return Packed{_mm512_packus_epi16(first.raw, second.raw)};
#elif HWY_TARGET == HWY_AVX2
    return Packed{_mm256_packus_epi16(first.raw, second.raw)};
#elif HWY_TARGET == HWY_SSSE3 || HWY_TARGET == HWY_SSE4
    return Packed{_mm_packus_epi16(first.raw, second.raw)};
#elif HWY_TARGET == HWY_WASM
    return Packed{wasm_u8x16_narrow_i16x8(first.raw, second.raw)};
#else
    const hn::Half<PackedTag> half;
    return hn::Combine(PackedTag(), hn::DemoteTo(half, second), hn::DemoteTo(half, first));
#endif
}

HWY_INLINE Channels<Ints> loadIntChannels(const PackedSpan& span, std::size_t i) {
    const Packed pixels = hn::LoadU(PackedTag(), span.pixels + 4 * i);
    return {byteOfPixels<2>(pixels), byteOfPixels<1>(pixels), byteOfPixels<0>(pixels)};
}
HWY_INLINE void storeClamped(const Channels<Ints>& c, PackedSpan& span, std::size_t i) {
    std::uint8_t* const pixels = span.pixels + 4 * i;
    const Packed before = hn::LoadU(PackedTag(), pixels);
    HWY_ALIGN static constexpr std::uint8_t placesOfBytes[] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                               2, 6, 10, 14, 3, 7, 11, 15};
    const Packed places = hn::LoadDup128(PackedTag(), placesOfBytes);
    // Four blues, four greens, four reds and what becomes of the fourths in each 16 bytes.
    const Halves lower = hn::ReorderDemote2To(HalfTag(), c.blue, c.green);
#if HWY_TARGET <= HWY_AVX3
    // A mask leaves the fourths as they are.
    const Packed clamped = clampToPacked(lower, hn::ReorderDemote2To(HalfTag(), c.red, c.red));
    const Packed after{
        _mm512_mask_shuffle_epi8(before.raw, 0x7777777777777777, clamped.raw, places.raw)};
#else
    const Halves upper = hn::ReorderDemote2To(HalfTag(), c.red, byteOfPixels<3>(before));
    const Packed after = bytesAtPlaces(clampToPacked(lower, upper), places);
#endif
    hn::StoreU(after, PackedTag(), pixels);
}

#endif

HWY_INLINE Channels<Floats> loadChannels(const ColourRun& run, std::size_t i) {
    const FloatTag tag;
    return {hn::Load(tag, run.red + i), hn::Load(tag, run.green + i), hn::Load(tag, run.blue + i)};
}
HWY_INLINE void storeChannels(const Channels<Floats>& c, ColourRun& run, std::size_t i) {
    const FloatTag tag;
    hn::Store(c.red, tag, run.red + i);
    hn::Store(c.green, tag, run.green + i);
    hn::Store(c.blue, tag, run.blue + i);
}

template <class Span>
HWY_INLINE Channels<Floats> loadFloatChannels(const Span& span, std::size_t i) {
    return mapChannels(loadIntChannels(span, i),
                       [](Ints channel) HWY_ATTR { return toFloats(channel); });
}

// Kernels whose formula is one for pixels and for table colours are written over either of the two
// classes below: how colours are loaded and stored, and what their scale is.

/// The pixels of a span on the scale of bytes. Their numbers are whole and no NaN.
class BytePixels {
public:
    static constexpr bool areBytes = true;

    explicit HWY_INLINE BytePixels(PackedSpan& span) : span_(span) {}

    HWY_INLINE std::size_t count() const { return span_.count; }
    HWY_INLINE Channels<Floats> load(std::size_t i) const { return loadFloatChannels(span_, i); }
    /// Clamped and truncated.
    HWY_INLINE void store(const Channels<Floats>& c, std::size_t i) const {
        const auto toByte = [](Floats channel) HWY_ATTR { return clampToBytes(channel); };
        storeClamped(mapChannels(c, toByte), span_, i);
    }
    /// The same of numbers that 32 bits hold.
    HWY_INLINE void storeInRange(const Channels<Floats>& c, std::size_t i) const {
        const auto toByte = [](Floats channel) HWY_ATTR { return truncateInRange(channel); };
        storeClamped(mapChannels(c, toByte), span_, i);
    }

    /// Clamped and truncated where `changes`, elsewhere `before` as it was loaded.
    HWY_INLINE void storeWhere(FloatMask changes, const Channels<Floats>& c,
                               const Channels<Floats>& before, std::size_t i) const {
        store(chosen(changes, c, before), i);
    }

    static HWY_INLINE Floats white() { return constant(255.0f); }
    /// Shares of white.
    static HWY_INLINE Floats perWhite(Floats values) { return quotientBy<255>(values); }
    static HWY_INLINE Floats largestOf(const Channels<Floats>& c) {
        return HWY_NAMESPACE::largestOf(c);
    }
    static HWY_INLINE Floats smallestOf(const Channels<Floats>& c) {
        return HWY_NAMESPACE::smallestOf(c);
    }

private:
    PackedSpan& span_;
};

/// Table colours, on the scale 0..1 but any numbers, NaN and infinities included.
class UnitColours {
public:
    static constexpr bool areBytes = false;

    explicit HWY_INLINE UnitColours(ColourRun& run) : run_(run) {}

    HWY_INLINE std::size_t count() const { return run_.count; }
    HWY_INLINE Channels<Floats> load(std::size_t i) const { return loadChannels(run_, i); }
    HWY_INLINE void store(const Channels<Floats>& c, std::size_t i) const {
        storeAny(clamped(c), i);
    }
    HWY_INLINE void storeInRange(const Channels<Floats>& c, std::size_t i) const { store(c, i); }
    HWY_INLINE void storeWhere(FloatMask changes, const Channels<Floats>& c,
                               const Channels<Floats>& before, std::size_t i) const {
        storeAny(chosen(changes, clamped(c), before), i);
    }
    /// Not even clamped.
    HWY_INLINE void storeAny(const Channels<Floats>& c, std::size_t i) const {
        storeChannels(c, run_, i);
    }

    static HWY_INLINE Floats white() { return constant(1.0f); }
    static HWY_INLINE Floats perWhite(Floats values) { return values; }
    // NaN counts as std::max() and std::min() of a list in this order count it.
    static HWY_INLINE Floats largestOf(const Channels<Floats>& c) {
        const Floats largest = hn::IfThenElse(hn::Lt(c.red, c.green), c.green, c.red);
        return hn::IfThenElse(hn::Lt(largest, c.blue), c.blue, largest);
    }
    static HWY_INLINE Floats smallestOf(const Channels<Floats>& c) {
        const Floats smallest = hn::IfThenElse(hn::Lt(c.green, c.red), c.green, c.red);
        return hn::IfThenElse(hn::Lt(c.blue, smallest), c.blue, smallest);
    }

private:
    static HWY_INLINE Channels<Floats> clamped(const Channels<Floats>& c) {
        return mapChannels(c, [](Floats channel) HWY_ATTR { return clampTo(1.0f, channel); });
    }

    ColourRun& run_;
};

/// Calls `body(i)` for the first colour of every vector. The last one may run past those that
/// count, but not past their memory.
template <class Colours, class Body>
HWY_INLINE void forEachColour(const Colours& colours, Body body) {
    for (std::size_t i = 0; i < colours.count(); i += hn::Lanes(FloatTag())) body(i);
}

/// Stores what `changed(channel)` makes of every channel.
template <class Colours, class Changed>
HWY_INLINE void changeEveryChannel(Colours colours, Changed changed) {
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        colours.store(mapChannels(colours.load(i), changed), i);
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif
