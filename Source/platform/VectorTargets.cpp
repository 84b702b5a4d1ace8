// What the vector code's dispatch asks at run time. Highway declares these functions and has them
// in a library of its own; with them here, its headers are all that is needed.

#include "platform/VectorTargets.h"

#include <hwy/targets.h>

#include <atomic>

namespace {

std::atomic<std::int64_t> targetsForTest{0};

}  // namespace

namespace hwy {

std::int64_t SupportedTargets() {
    static const std::int64_t detected = keladjust::platform::detectVectorTargets();
    const std::int64_t chosen = targetsForTest;
    return chosen != 0 ? chosen : detected;
}

void SetSupportedTargetsForTest(std::int64_t targets) {
    targetsForTest = targets;
}

ChosenTarget& GetChosenTarget() {
    static ChosenTarget chosen;
    return chosen;
}

}  // namespace hwy
