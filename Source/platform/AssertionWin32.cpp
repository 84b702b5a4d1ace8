#undef NDEBUG  // the C runtime declares its report only where assertions are on
#include <cassert>
#include <cstdlib>
#include <string>

#include "platform/Assertion.h"

namespace keladjust::platform {

void reportFailedAssertion(const char* expression, const char* source, unsigned line, const char*) {
    // Both texts are plain ASCII, so widening them is a copy.
    const std::string narrowExpression(expression);
    const std::string narrowSource(source);
    _wassert(std::wstring(narrowExpression.begin(), narrowExpression.end()).c_str(),
             std::wstring(narrowSource.begin(), narrowSource.end()).c_str(), line);
    std::abort();
}

}  // namespace keladjust::platform
