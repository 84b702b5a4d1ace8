// A byte table applied to many bytes at once.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/ByteTable.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

void mapOneByOne(const std::uint8_t* table, bool keepsFourth, std::uint8_t* bytes,
                 std::size_t count) {
    if (!keepsFourth) {
        for (std::size_t i = 0; i < count; ++i) bytes[i] = table[bytes[i]];
        return;
    }
    for (std::size_t i = 0; i < count; i += 4) {
        for (std::size_t channel = i; channel < i + 3; ++channel) {
            bytes[channel] = table[bytes[channel]];
        }
    }
}

#if HWY_TARGET == HWY_SSE2 || HWY_TARGET == HWY_SCALAR

// No instruction here looks bytes up.
void mapBytes(const std::uint8_t* table, bool keepsFourth, std::uint8_t* bytes, std::size_t count) {
    mapOneByOne(table, keepsFourth, bytes, count);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using ByteTag = hn::ScalableTag<std::uint8_t>;
using SignedTag = hn::RebindToSigned<ByteTag>;
using Bytes = hn::Vec<ByteTag>;
using SignedBytes = hn::Vec<SignedTag>;

// The instruction looks up among 16 bytes by an index of four bits and gives 0 where the index is
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
    HWY_INLINE Bytes rowAt(int row, SignedBytes indices) const {
        return hn::BitCast(ByteTag(), hn::TableLookupBytesOr0(rows_[row], indices));
    }

    Bytes rows_[16];
};

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
    mapOneByOne(table, keepsFourth, bytes + i, count - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(mapBytes);

void spans::mapBytes(const std::uint8_t* table, Bytes which, std::uint8_t* bytes,
                     std::size_t count) {
    HWY_DYNAMIC_DISPATCH(mapBytes)(table, which == Bytes::threeOfFour, bytes, count);
}

}  // namespace keladjust
#endif
