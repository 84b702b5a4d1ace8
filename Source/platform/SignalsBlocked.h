#ifndef KELADJUST_PLATFORM_SIGNALSBLOCKED_H
#define KELADJUST_PLATFORM_SIGNALSBLOCKED_H

#if !defined(_WIN32)
#include <signal.h>
#endif

namespace keladjust::platform {

/// While it lives, the calling thread takes no signals that are sent to the process, and neither
/// do, ever, the threads that it starts: those are for the host's threads. Signals that a thread
/// brings upon itself are not held back. Nothing where there are none.
class SignalsBlocked {
public:
    SignalsBlocked() noexcept;
    ~SignalsBlocked();
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

#if !defined(_WIN32)
private:
    sigset_t saved_;
#endif
};

}  // namespace keladjust::platform

#endif
