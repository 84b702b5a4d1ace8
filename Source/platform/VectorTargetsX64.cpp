// The instruction sets of this processor, by what it says of itself.

#include <cpuid.h>
#include <hwy/targets.h>

#include <cstdint>

#include "platform/VectorTargets.h"

namespace keladjust::platform {

namespace {

/// Words of the processor's description of itself.
struct Features {
    unsigned basic = 0;       ///< leaf 1, ECX
    unsigned extended = 0;    ///< leaf 7, EBX
    unsigned extended2 = 0;   ///< leaf 7, ECX
    unsigned additional = 0;  ///< leaf 0x80000001, ECX
};

constexpr unsigned bits() {
    return 0;
}
template <class... Rest>
constexpr unsigned bits(int first, Rest... rest) {
    return 1u << first | bits(rest...);
}

constexpr unsigned ssse3 = bits(9);
// SSE4.1, SSE4.2, carry-less products, AES.
constexpr unsigned sse4 = ssse3 | bits(1, 19, 20, 25);
// AVX, fused products, halves.
constexpr unsigned avx = sse4 | bits(12, 28, 29);
// AVX2 and both sets of bit manipulation; leading zeros are among the additional features.
constexpr unsigned avx2 = bits(3, 5, 8);
constexpr unsigned leadingZeros = bits(5);
// Foundation, double words, conflicts, bytes and words, shorter vectors.
constexpr unsigned avx512 = avx2 | bits(16, 17, 28, 30, 31);
// Bytes in both parts, Galois fields, AES and carry-less products of vectors, neural networks, bit
// algorithms, counts of bits.
constexpr unsigned avx512Later = bits(1, 6, 8, 9, 10, 11, 12, 14);

constexpr unsigned stateIsSaved = bits(27);
// What the system must save of the registers when it switches threads.
constexpr unsigned savedAvx = bits(1, 2);
constexpr unsigned savedAvx512 = savedAvx | bits(5, 6, 7);

constexpr bool has(unsigned word, unsigned wanted) {
    return (word & wanted) == wanted;
}

Features readFeatures() {
    Features features;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) != 0) features.basic = c;
    if (__get_cpuid_count(7, 0, &a, &b, &c, &d) != 0) {
        features.extended = b;
        features.extended2 = c;
    }
    if (__get_cpuid(0x80000001u, &a, &b, &c, &d) != 0) features.additional = c;
    return features;
}

unsigned readSavedState(const Features& features) {
    if (!has(features.basic, stateIsSaved)) return 0;
    unsigned low = 0;
    unsigned high = 0;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

}  // namespace

std::int64_t detectVectorTargets() {
    const Features features = readFeatures();
    const unsigned saved = readSavedState(features);
    std::int64_t targets = HWY_EMU128 | HWY_SCALAR;
    if (!has(features.basic, ssse3)) return targets;
    targets |= HWY_SSSE3;
    if (!has(features.basic, sse4)) return targets;
    targets |= HWY_SSE4;
    if (!has(saved, savedAvx) || !has(features.basic, avx) || !has(features.extended, avx2) ||
        !has(features.additional, leadingZeros)) {
        return targets;
    }
    targets |= HWY_AVX2;
    if (!has(saved, savedAvx512) || !has(features.extended, avx512)) return targets;
    targets |= HWY_AVX3;
    if (has(features.extended2, avx512Later)) targets |= HWY_AVX3_DL;
    return targets;
}

}  // namespace keladjust::platform
