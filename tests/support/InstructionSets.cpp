#include "support/InstructionSets.h"

#include <hwy/highway.h>

#include <cstdint>

namespace keladjust::test {

namespace {

void use(std::int64_t targets) {
    hwy::SetSupportedTargetsForTest(targets);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

}  // namespace

void forEachInstructionSet(const std::function<void(const std::string& name)>& body) {
    constexpr std::int64_t whatTheMachineHas = 0;
    std::int64_t scalar = HWY_STATIC_TARGET;
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        if (target == scalar) scalar = 0;
        use(target);
        body(hwy::TargetName(target));
    }
    if (scalar != 0) {
        use(scalar);
        body(hwy::TargetName(scalar));
    }
    use(whatTheMachineHas);
}

}  // namespace keladjust::test
