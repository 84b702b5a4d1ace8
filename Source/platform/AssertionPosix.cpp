#undef NDEBUG  // glibc declares its report only where assertions are on
#include <cassert>

#include "platform/Assertion.h"

namespace keladjust::platform {

namespace {

// C libraries differ in what number a line is.
template <class Line>
Line lineOf(void (*report)(const char*, const char*, Line, const char*));

}  // namespace

void reportFailedAssertion(const char* expression, const char* source, unsigned line,
                           const char* function) {
    __assert_fail(expression, source, static_cast<decltype(lineOf(&__assert_fail))>(line),
                  function);
}

}  // namespace keladjust::platform
