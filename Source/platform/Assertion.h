#ifndef KELADJUST_PLATFORM_ASSERTION_H
#define KELADJUST_PLATFORM_ASSERTION_H

namespace keladjust::platform {

/// The platform's own report of a failed assertion, release builds included; ends the process.
[[noreturn]] void reportFailedAssertion(const char* expression, const char* source, unsigned line,
                                        const char* function);

}  // namespace keladjust::platform

#endif
