#include <windows.h>

#include "platform/Clock.h"

namespace keladjust::platform {

std::int64_t milliseconds() {
    static const std::int64_t frequency = [] {
        LARGE_INTEGER value;
        QueryPerformanceFrequency(&value);
        return std::int64_t{value.QuadPart};
    }();
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return millisecondsOf(count.QuadPart, frequency);
}

}  // namespace keladjust::platform
