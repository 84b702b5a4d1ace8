#undef NDEBUG  // declared only where assertions are on
#include <cassert>

#include "platform/Assertion.h"

namespace keladjust::platform {

void reportFailedAssertion(const char* expression, const char* source, unsigned line,
                           const char* function) {
    __assert_rtn(function, source, static_cast<int>(line), expression);
}

}  // namespace keladjust::platform
