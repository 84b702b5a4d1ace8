#ifndef KELADJUST_TESTS_FAULTS_ARMING_H
#define KELADJUST_TESTS_FAULTS_ARMING_H

#include "FaultPlan.h"

namespace keladjust::faults {

/// Counts a call, and says what is to become of it. Before main() nothing is counted: what the
/// loader and the constructors of libraries do is not the program's to survive.
Effect nextEffect(Call call);

/// The errno of Effect::error.
int plannedError();

[[noreturn]] void killThisProcess();

}  // namespace keladjust::faults

#endif
