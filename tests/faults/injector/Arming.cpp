#include "Arming.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace keladjust::faults {

namespace {

struct Plan {
    Call call = Call::count;
    std::uint64_t number = 0;
    Effect effect = Effect::none;
    int error = 0;
};

Plan plan;
Counters* counters = nullptr;  // null: not armed

/// Takes no memory, unlike all that could read a number for it.
std::uint64_t takeNumber(const char*& text) {
    std::uint64_t number = 0;
    while (*text == ' ') ++text;
    for (; *text >= '0' && *text <= '9'; ++text) {
        number = 10 * number + static_cast<std::uint64_t>(*text - '0');
    }
    return number;
}

/// By system calls alone, since the functions are those that fail.
void arm() {
    if (const char* text = std::getenv(planVariable)) {
        plan.call = static_cast<Call>(takeNumber(text));
        plan.number = takeNumber(text);
        plan.effect = static_cast<Effect>(takeNumber(text));
        plan.error = static_cast<int>(takeNumber(text));
    }
    const char* name = std::getenv(countersVariable);
    if (name == nullptr) return;
    const auto file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, O_RDWR | O_CLOEXEC));
    const auto place = reinterpret_cast<void*>(
        syscall(SYS_mmap, nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
    syscall(SYS_close, file);
    if (place != MAP_FAILED) counters = static_cast<Counters*>(place);
}

}  // namespace

Effect nextEffect(Call call) {
    if (counters == nullptr) return Effect::none;
    const std::uint64_t number = ++counters->calls[static_cast<std::size_t>(call)];
    if (call != plan.call) return Effect::none;
    if (plan.effect == Effect::errorsOn) {
        return number >= plan.number ? Effect::error : Effect::none;
    }
    return number == plan.number ? plan.effect : Effect::none;
}

int plannedError() {
    return plan.error;
}

void killThisProcess() {
    for (;;) syscall(SYS_kill, getpid(), SIGKILL);
}

}  // namespace keladjust::faults

namespace {

using Main = int (*)(int, char**, char**);

Main theMain = nullptr;

int armedMain(int count, char** values, char** environment) {
    keladjust::faults::arm();
    return theMain(count, values, environment);
}

}  // namespace

/// What the start of every program calls, and what calls main().
extern "C" int __libc_start_main(Main main, int count, char** values, void (*init)(),
                                 void (*fini)(), void (*loaderFini)(), void* stackEnd) {
    theMain = main;
    const auto start =
        reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(armedMain, count, values, init, fini, loaderFini, stackEnd);
}
