#ifndef KELADJUST_APP_COMMANDS_PROGRAM_H
#define KELADJUST_APP_COMMANDS_PROGRAM_H

namespace keladjust::app {

/// The whole program. Nothing is thrown: every problem becomes a message and an exit code.
int runProgram(int count, char** values) noexcept;

}  // namespace keladjust::app

#endif
