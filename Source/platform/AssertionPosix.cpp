#undef NDEBUG  // glibc declares its report only where assertions are on
#include <cassert>

#include "platform/Assertion.h"

namespace keladjust::platform {

void reportFailedAssertion(const char* expression, const char* source, unsigned line,
                           const char* function) {
    __assert_fail(expression, source, line, function);
}

}  // namespace keladjust::platform
