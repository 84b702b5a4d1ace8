#include <time.h>

#include "platform/Clock.h"

namespace keladjust::platform {

std::int64_t milliseconds() {
    constexpr std::int64_t frequency = 1'000'000'000;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return millisecondsOf(now.tv_sec * frequency + now.tv_nsec, frequency);
}

}  // namespace keladjust::platform
