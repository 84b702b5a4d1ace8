#ifndef KELADJUST_FILTERS_BLUR_STACKBLURSCALE_H
#define KELADJUST_FILTERS_BLUR_STACKBLURSCALE_H

#include <cstdint>

namespace keladjust {

/// What stands for a division by (radius + 1)^2: a multiplication and a shift to the right.
struct StackBlurScale {
    std::uint32_t multiplier;
    unsigned shift;
};

/// The published entry of M. Klingemann's tables for a radius of 0..254.
constexpr StackBlurScale stackBlurScale(unsigned radius) {
    // The largest shift whose multiplier, rounded up, stays within the tables' 512.
    const std::uint64_t divisor = std::uint64_t{radius + 1} * (radius + 1);
    const auto multiplier = [divisor](unsigned shift) {
        return ((std::uint64_t{1} << shift) + divisor - 1) / divisor;
    };
    unsigned shift = 9;
    while (multiplier(shift + 1) <= 512) ++shift;
    return {static_cast<std::uint32_t>(multiplier(shift)), shift};
}

/// The shift of the largest radius, to which every other scale can be moved up: vectors shift by a
/// constant in fewer steps than by a number.
constexpr unsigned stackBlurShift = stackBlurScale(254).shift;

constexpr std::uint32_t stackBlurMultiplier(unsigned radius) {
    const StackBlurScale scale = stackBlurScale(radius);
    return scale.multiplier << (stackBlurShift - scale.shift);
}

/// True if the product with the largest sum that a radius has fits 32 bits.
constexpr bool stackBlurProductFits(unsigned radius) {
    const std::uint64_t largestSum = std::uint64_t{255} * (radius + 1) * (radius + 1);
    return largestSum * stackBlurMultiplier(radius) < std::uint64_t{1} << 32;
}
static_assert([] {
    for (unsigned radius = 0; radius < 255; ++radius) {
        if (!stackBlurProductFits(radius)) return false;
    }
    return true;
}());

}  // namespace keladjust

#endif
