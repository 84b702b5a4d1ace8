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

}  // namespace keladjust

#endif
