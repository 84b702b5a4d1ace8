#ifndef KELADJUST_APP_COMMANDS_LUTCOMMAND_H
#define KELADJUST_APP_COMMANDS_LUTCOMMAND_H

#include <string>
#include <vector>

#include "commands/CommandDescription.h"

namespace keladjust::app {

/// `keladjust lut`: writes the settings as a colour table.
///
/// @param arguments without the program's name and the command's
/// @return the program's exit code
/// @throws UsageError, Failure
int runLutCommand(const std::vector<std::string>& arguments);

CommandDescription describeLutCommand();

}  // namespace keladjust::app

#endif
