#ifndef KELADJUST_APP_COMMANDS_STAGETIMES_H
#define KELADJUST_APP_COMMANDS_STAGETIMES_H

#include <keladjust/keladjust.h>

#include <functional>
#include <optional>
#include <string>

#include "pictures/Photo.h"

namespace keladjust::app {

/// What one stage takes on one picture.
struct StageTime {
    std::string stage;
    double seconds;  ///< the median of some runs; never 0
};

/// Measures stage after stage, each with a setting that a user might choose and each run on the
/// picture as it came; last come several settings in one call. First of all comes a pass that does
/// no more than read and write every byte, which is the least that a change in place takes on this
/// machine. A run before the first is not counted: it meets memory that is new.
///
/// @param given   settings to be measured in one call, too
/// @param runs    of each stage, 1 or more
/// @param threads of the pass over memory, 1 or more; stages have those that the library is told
void timeStages(const Photo& photo, const std::optional<_AdjustParam>& given, int runs, int threads,
                const std::function<void(const StageTime&)>& tell);

}  // namespace keladjust::app

#endif
