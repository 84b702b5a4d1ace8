#ifndef KELADJUST_APP_COMMANDS_BATCH_H
#define KELADJUST_APP_COMMANDS_BATCH_H

#include <functional>
#include <vector>

#include "commands/Job.h"

namespace keladjust::app {

/// Runs every plan, up to `jobs` at a time, until all are done or `stop` says so.
///
/// @param onReport gets the reports in the order of the plans, one at a time
void runBatch(const std::vector<PicturePlan>& plans, const JobSettings& settings,
              Adjuster& adjuster, int jobs, bool (*stop)(),
              const std::function<void(const JobReport&)>& onReport);

}  // namespace keladjust::app

#endif
