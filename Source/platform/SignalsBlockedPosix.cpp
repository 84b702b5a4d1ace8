#include <initializer_list>

#include "platform/SignalsBlocked.h"

namespace keladjust::platform {

SignalsBlocked::SignalsBlocked() noexcept {
    sigset_t sent;
    sigfillset(&sent);
    for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
        sigdelset(&sent, own);
    }
    pthread_sigmask(SIG_BLOCK, &sent, &saved_);
}

SignalsBlocked::~SignalsBlocked() {
    pthread_sigmask(SIG_SETMASK, &saved_, nullptr);
}

}  // namespace keladjust::platform
