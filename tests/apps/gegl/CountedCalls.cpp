#include "gegl/CountedCalls.h"

#include <dlfcn.h>
#include <keladjust/CxImage.h>

#include <mutex>
#include <utility>

namespace keladjust::test {

namespace {

std::mutex lock;
std::vector<Call> calls;

}  // namespace

std::vector<Call> takeCalls() {
    const std::lock_guard hold(lock);
    return std::exchange(calls, {});
}

}  // namespace keladjust::test

// This program's comes before the library's own, in the modules that it loads as well.
KeladjustResult keladjustRun(CxImage* image, const _AdjustParam* record, size_t recordBytes,
                             KeladjustRun* run) {
    using namespace keladjust::test;
    {
        const std::lock_guard hold(lock);
        calls.push_back({static_cast<unsigned>(image->GetWidth()),
                         static_cast<unsigned>(image->GetHeight()), run->path, *record});
    }
    static const auto library =
        reinterpret_cast<decltype(&keladjustRun)>(dlsym(RTLD_NEXT, "keladjustRun"));
    return library(image, record, recordBytes, run);
}
