// Bytes chosen by their places within blocks of 16. Included once for every instruction set, like
// the kernels that use it; hence the guard that toggles.

#if defined(KELADJUST_WALKS_BYTELOOKUP_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_WALKS_BYTELOOKUP_INL_H
#undef KELADJUST_WALKS_BYTELOOKUP_INL_H
#else
#define KELADJUST_WALKS_BYTELOOKUP_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// The place that gives 0.
constexpr std::uint8_t noByte = 0x80;

/// For each of `places`, 0..15 or noByte, the byte at that place of the same block of `bytes`;
/// other places mean something else on every processor.
template <class Bytes>
HWY_INLINE Bytes bytesAtPlaces(Bytes bytes, Bytes places) {
#if HWY_TARGET == HWY_WASM
    // Highway 1.0 goes byte by byte there, through memory.
    return Bytes{wasm_i8x16_swizzle(bytes.raw, places.raw)};
#else
    return hn::TableLookupBytesOr0(bytes, places);
#endif
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif
