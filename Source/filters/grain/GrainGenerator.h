#ifndef KELADJUST_FILTERS_GRAIN_GRAINGENERATOR_H
#define KELADJUST_FILTERS_GRAIN_GRAINGENERATOR_H

#include <cstdint>

/// The random numbers of the grain: any pixel's without those before it.
namespace keladjust {

/// One or several steps of a linear congruential generator modulo 2^32.
struct Steps {
    std::uint32_t factor = 1;
    std::uint32_t addend = 0;

    constexpr std::uint32_t operator()(std::uint32_t state) const {
        return state * factor + addend;
    }
    constexpr Steps then(Steps next) const { return {factor * next.factor, next(addend)}; }
};

/// `times` of them at once.
constexpr Steps repeated(Steps step, std::uint64_t times) {
    Steps all;
    for (; times != 0; times >>= 1) {
        if (times & 1) all = all.then(step);
        step = step.then(step);
    }
    return all;
}

/// The generator of the Windows C runtime, whose pattern the grain has on every system: seeded with
/// 0, each draw is bits 16 to 30 of the new state.
inline constexpr Steps oneDraw{214013, 2531011};
inline constexpr std::uint32_t grainSeed = 0;

/// The first of a pixel's five draws is thrown away.
inline constexpr std::uint64_t drawsPerPixel = 5;

}  // namespace keladjust

#endif
