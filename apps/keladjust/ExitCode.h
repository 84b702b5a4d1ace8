#ifndef KELADJUST_APP_EXITCODE_H
#define KELADJUST_APP_EXITCODE_H

namespace keladjust::app {

/// What the program tells the shell.
enum ExitCode : int {
    EXIT_ALL_FINE = 0,
    EXIT_SOME_FAILED = 1,   ///< at least one picture, preset or table could not be made
    EXIT_USAGE = 2,         ///< the command line was refused; nothing was written
    EXIT_INTERRUPTED = 130  ///< Ctrl-C; what was written before is whole
};

}  // namespace keladjust::app

#endif
