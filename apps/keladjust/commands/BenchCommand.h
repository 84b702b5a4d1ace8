#ifndef KELADJUST_APP_COMMANDS_BENCHCOMMAND_H
#define KELADJUST_APP_COMMANDS_BENCHCOMMAND_H

#include <string>
#include <vector>

#include "commands/CommandDescription.h"

namespace keladjust::app {

/// `keladjust bench`: prints what each stage takes on one picture, and draws it.
///
/// @param arguments without the program's name and the command's
/// @return the program's exit code
/// @throws UsageError, Failure
int runBenchCommand(const std::vector<std::string>& arguments);

CommandDescription describeBenchCommand();

}  // namespace keladjust::app

#endif
