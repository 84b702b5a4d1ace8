#ifndef KELADJUST_APP_COMMANDS_OUTPUTPLAN_H
#define KELADJUST_APP_COMMANDS_OUTPUTPLAN_H

#include <filesystem>
#include <optional>
#include <vector>

#include "commands/Options.h"

namespace keladjust::app {

/// What is to be made of one picture.
struct PicturePlan {
    std::filesystem::path input;
    std::filesystem::path output;
    const Codec* codec = nullptr;  ///< to write with; null: as the input
    std::optional<std::filesystem::path> comparison;
    std::optional<std::filesystem::path> sheet;
};

struct OutputPlan {
    std::optional<std::filesystem::path> folder;  ///< to be created
    std::vector<PicturePlan> pictures;
};

/// Decides on all names before anything is written.
///
/// @throws UsageError if an output would replace an input, two outputs would have one name, or a
///         format cannot be told
OutputPlan planOutputs(const Options& options);

}  // namespace keladjust::app

#endif
