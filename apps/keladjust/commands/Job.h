#ifndef KELADJUST_APP_COMMANDS_JOB_H
#define KELADJUST_APP_COMMANDS_JOB_H

#include <string>
#include <vector>

#include "commands/OutputPlan.h"
#include "pictures/Adjuster.h"

namespace keladjust::app {

/// What all pictures of a run have in common.
struct JobSettings {
    _AdjustParam record;
    EncodeOptions encoding;
    const KeladjustSetting* sheet = nullptr;
    PixelBound bound;
};

/// What became of one picture.
struct JobReport {
    const PicturePlan* plan = nullptr;
    std::vector<std::filesystem::path> written;
    std::vector<std::string> notices;  ///< what was lost on the way
    std::string details;               ///< for who wants to know more
    std::string failure;               ///< empty if all went well
    bool shortOfMemory = false;        ///< a failure that leaves no room for a text
    bool cancelled = false;            ///< begun, and left when the run was to stop
};

/// Reads, adjusts and writes one picture. Whatever goes wrong ends up in the report.
///
/// @param plan outlives the report
JobReport runJob(const PicturePlan& plan, const JobSettings& settings, Adjuster& adjuster) noexcept;

}  // namespace keladjust::app

#endif
