#ifndef KELADJUST_PLATFORM_CLOCK_H
#define KELADJUST_PLATFORM_CLOCK_H

#include <cstdint>

namespace keladjust::platform {

/// `count` ticks of a clock with `frequency` ticks a second, in whole milliseconds. Seconds and
/// rest apart, so that no product leaves 64 bits.
constexpr std::int64_t millisecondsOf(std::int64_t count, std::int64_t frequency) {
    return count / frequency * 1000 + count % frequency * 1000 / frequency;
}

/// Milliseconds of a clock that never goes back, from an arbitrary start.
std::int64_t milliseconds();

}  // namespace keladjust::platform

#endif
