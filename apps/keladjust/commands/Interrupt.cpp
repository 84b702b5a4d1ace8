#include "commands/Interrupt.h"

#include <atomic>
#include <csignal>

namespace keladjust::app {

namespace {

std::atomic<bool> asked{false};
static_assert(std::atomic<bool>::is_always_lock_free, "signal handlers may not wait");

extern "C" void onInterrupt(int) {
    asked = true;
    std::signal(SIGINT, SIG_DFL);
}

}  // namespace

void catchInterrupts() {
    std::signal(SIGINT, onInterrupt);
}

bool interrupted() {
    return asked;
}

}  // namespace keladjust::app
