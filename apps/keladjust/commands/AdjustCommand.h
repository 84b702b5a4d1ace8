#ifndef KELADJUST_APP_COMMANDS_ADJUSTCOMMAND_H
#define KELADJUST_APP_COMMANDS_ADJUSTCOMMAND_H

#include <string>
#include <vector>

namespace keladjust::app {

/// The program's main work: adjusts pictures and saves presets.
///
/// @param arguments without the program's name
/// @return the program's exit code
/// @throws UsageError, Failure
int runAdjustCommand(const std::vector<std::string>& arguments);

}  // namespace keladjust::app

#endif
