// A byte table, or a ramp in its place, applied to many bytes at once.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "walks/ByteMap.cpp"
#include <hwy/foreach_target.h>

#include "walks/ByteMap.h"

#include <hwy/highway.h>

#include <cstring>

#include "arithmetic/HeldVector-inl.h"
#include "walks/WordProducts-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

template <class Map>
void mapOneByOne(Map map, bool keepsFourth, std::uint8_t* bytes, std::size_t count) {
    if (!keepsFourth) {
        for (std::size_t i = 0; i < count; ++i) bytes[i] = map(bytes[i]);
        return;
    }
    for (std::size_t i = 0; i < count; i += 4) {
        for (std::size_t channel = i; channel < i + 3; ++channel) {
            bytes[channel] = map(bytes[channel]);
        }
    }
}

void lookUpOneByOne(const std::uint8_t* table, bool keepsFourth, std::uint8_t* bytes,
                    std::size_t count) {
    mapOneByOne([table](std::uint8_t byte) { return table[byte]; }, keepsFourth, bytes, count);
}

#if HWY_TARGET == HWY_SSE2 || HWY_TARGET == HWY_EMU128 || HWY_TARGET == HWY_SCALAR || \
    !(HWY_ARCH_X86 || (HWY_ARCH_ARM_A64 && !HWY_HAVE_SCALABLE) || HWY_TARGET == HWY_WASM)

// No instruction here looks bytes up in a way that is known below.
void mapBytes(const std::uint8_t* table, bool keepsFourth, std::uint8_t* bytes, std::size_t count) {
    lookUpOneByOne(table, keepsFourth, bytes, count);
}

void rampBytes(const ByteRamp& ramp, bool keepsFourth, std::uint8_t* bytes, std::size_t count) {
    mapOneByOne(ramp, keepsFourth, bytes, count);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using ByteTag = hn::ScalableTag<std::uint8_t>;
using Bytes = hn::Vec<ByteTag>;

// What instructions do with an index beyond their rows of 16 bytes differs, and Highway leaves it
// open: each kind has a form of its own.

#if HWY_ARCH_ARM_A64

// One instruction looks up among four rows and, for any other index, leaves what there is. Counting
// an index down by 64, a value is below 64 at its own quarter of the table and nowhere else.
class Rows {
public:
    explicit Rows(const std::uint8_t* table) {
        for (uint8x16x4_t& quarter : quarters_) {
            for (uint8x16_t& row : quarter.val) {
                row = vld1q_u8(table);
                table += 16;
            }
        }
    }

    HWY_INLINE Bytes map(Bytes values) const {
        uint8x16_t indices = values.raw;
        uint8x16_t mapped = vqtbl4q_u8(quarters_[0], indices);
        for (int i = 1; i < 4; ++i) {
            indices = vsubq_u8(indices, vdupq_n_u8(64));
            mapped = vqtbx4q_u8(mapped, quarters_[i], indices);
        }
        return Bytes(mapped);
    }

private:
    uint8x16x4_t quarters_[4];
};

#elif HWY_TARGET == HWY_WASM

// The instruction gives 0 for every index that is not 0..15. Counting an index down by 16, a value
// is below 16 at its own row and nowhere else.
class Rows {
public:
    explicit Rows(const std::uint8_t* table) {
        for (int i = 0; i < 16; ++i) rows_[i] = wasm_v128_load(table + 16 * i);
    }

    HWY_INLINE Bytes map(Bytes values) const {
        const v128_t sixteen = held(hn::Set(ByteTag(), std::uint8_t{16})).raw;
        v128_t indices = values.raw;
        v128_t mapped = wasm_i8x16_swizzle(rows_[0], indices);
        for (int i = 1; i < 16; ++i) {
            indices = wasm_i8x16_sub(indices, sixteen);
            mapped = wasm_v128_or(mapped, wasm_i8x16_swizzle(rows_[i], indices));
        }
        return Bytes{mapped};
    }

private:
    v128_t rows_[16];
};

#else

// The instruction looks up by the four lowest bits of an index and gives 0 where the index is
// negative. Counting an index down by 16, a value of 0..127 stays above zero for as many rows of 16
// as it has reached or passed; with each row but the first stored as its difference to the one
// before, the exclusive or over all of them is the row that it reached. Values from 128 on go the
// same way with the upper half of the table, while their counterpart there, like theirs here, is
// negative from the start and saturates.
class Rows {
public:
    explicit Rows(const std::uint8_t* table) {
        const ByteTag tag;
        for (int half = 0; half < 2; ++half) {
            Bytes before = hn::Zero(tag);
            for (int i = 8 * half; i < 8 * half + 8; ++i) {
                const Bytes row = hn::LoadDup128(tag, table + 16 * i);
                rows_[i] = hn::Xor(row, before);
                before = row;
            }
        }
    }

    HWY_INLINE Bytes map(Bytes values) const {
        const SignedTag tag;
        const SignedBytes sixteen = hn::Set(tag, 16);
        SignedBytes lower = hn::BitCast(tag, values);
        SignedBytes upper = hn::Xor(lower, hn::Set(tag, -128));
        Bytes mapped = rowAt(0, lower);
        mapped = hn::Xor(mapped, rowAt(8, upper));
        for (int i = 1; i < 8; ++i) {
            lower = hn::SaturatedSub(lower, sixteen);
            upper = hn::SaturatedSub(upper, sixteen);
            mapped = hn::Xor(mapped, hn::Xor(rowAt(i, lower), rowAt(8 + i, upper)));
        }
        return mapped;
    }

private:
    using SignedTag = hn::RebindToSigned<ByteTag>;
    using SignedBytes = hn::Vec<SignedTag>;

    HWY_INLINE Bytes rowAt(int row, SignedBytes indices) const {
        return hn::BitCast(ByteTag(), hn::TableLookupBytesOr0(rows_[row], indices));
    }

    Bytes rows_[16];
};

#endif

void mapBytes(const std::uint8_t* table, bool keepsFourth, std::uint8_t* bytes, std::size_t count) {
    const ByteTag tag;
    const hn::Repartition<std::uint32_t, ByteTag> wordTag;
    const std::size_t vector = hn::Lanes(tag);
    const Rows rows(table);
    const Bytes kept = hn::BitCast(tag, hn::Set(wordTag, keepsFourth ? 0xFF000000 : 0u));
    const auto keeps = hn::MaskFromVec(kept);
    const auto mapVector = [&](std::size_t i) HWY_ATTR {
        const Bytes values = hn::LoadU(tag, bytes + i);
        hn::StoreU(hn::IfThenElse(keeps, values, rows.map(values)), tag, bytes + i);
    };
    std::size_t i = 0;
    for (; i + 2 * vector <= count; i += 2 * vector) {  // two share the loads of the rows
        mapVector(i);
        mapVector(i + vector);
    }
    for (; i + vector <= count; i += vector) mapVector(i);
    lookUpOneByOne(table, keepsFourth, bytes + i, count - i);
}

// The numbers of a ramp for every byte of a vector of pixels. Bytes that stay have a slope of 1.
class RampVectors {
public:
    RampVectors(const ByteRamp& ramp, bool keepsFourth)
        : low_(bytesOf(ramp.low, keepsFourth)),
          base_(bytesOf(ramp.base, keepsFourth)),
          even_{held(hn::Set(WordTag(), ramp.slope.whole)),
                held(hn::Set(WordTag(), ramp.slope.fraction))},
          odd_{wordsOf(ramp.slope.whole, 1, keepsFourth),
               wordsOf(ramp.slope.fraction, 0, keepsFourth)} {}

    HWY_INLINE Bytes map(Bytes values) const {
        const ByteTag tag;
        const Words ways = hn::BitCast(WordTag(), hn::SaturatedSub(values, low_));
        const Words lower = held(hn::Set(WordTag(), std::uint16_t{255}));
        const Words even = product(hn::And(ways, lower), even_);
        const Words odd = product(hn::ShiftRight<8>(ways), odd_);
        const Words risen = hn::Or(even, hn::ShiftLeft<8>(odd));
        return hn::SaturatedAdd(hn::BitCast(tag, risen), base_);
    }

private:
    using WordTag = hn::Repartition<std::uint16_t, ByteTag>;
    using Words = hn::Vec<WordTag>;
    using PixelTag = hn::Repartition<std::uint32_t, ByteTag>;

    struct Slope {
        Words whole;
        Words fraction;
    };

    // Neither the product nor the sum leaves 16 bits.
    static HWY_INLINE Words product(Words ways, const Slope& slope) {
        const Words fraction = upperProductOfBytes(ways, slope.fraction);
        const Words sum = hn::Add(hn::Mul(ways, slope.whole), fraction);
        return hn::Min(sum, held(hn::Set(WordTag(), std::uint16_t{255})));
    }
    static HWY_INLINE Bytes bytesOf(std::uint8_t value, bool keepsFourth) {
        const std::uint32_t pixel = value * (keepsFourth ? 0x010101u : 0x01010101u);
        return hn::BitCast(ByteTag(), held(hn::Set(PixelTag(), pixel)));
    }
    static HWY_INLINE Words wordsOf(std::uint16_t value, std::uint16_t fourth, bool keepsFourth) {
        const std::uint32_t upper = keepsFourth ? fourth : value;
        return hn::BitCast(WordTag(), held(hn::Set(PixelTag(), value | upper << 16)));
    }

    Bytes low_;
    Bytes base_;
    Slope even_;
    Slope odd_;
};

void rampBytes(const ByteRamp& ramp, bool keepsFourth, std::uint8_t* bytes, std::size_t count) {
    const ByteTag tag;
    const std::size_t vector = hn::Lanes(tag);
    const RampVectors vectors(ramp, keepsFourth);
    std::size_t i = 0;
    for (; i + vector <= count; i += vector) {
        hn::StoreU(vectors.map(hn::LoadU(tag, bytes + i)), tag, bytes + i);
    }
    if (i == count) return;
    HWY_ALIGN std::uint8_t rest[HWY_LANES(std::uint8_t)] = {};
    std::memcpy(rest, bytes + i, count - i);
    hn::Store(vectors.map(hn::Load(tag, rest)), tag, rest);
    std::memcpy(bytes + i, rest, count - i);
}

#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(mapBytes);
HWY_EXPORT(rampBytes);

void mapBytes(const ByteTable& table, MappedBytes which, std::uint8_t* bytes, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(mapBytes)
    (table.data(), which == MappedBytes::threeOfFour, bytes, count);
}
void rampBytes(const ByteRamp& ramp, MappedBytes which, std::uint8_t* bytes, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(rampBytes)(ramp, which == MappedBytes::threeOfFour, bytes, count);
}

}  // namespace keladjust
#endif
