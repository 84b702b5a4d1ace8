#ifndef KELADJUST_APP_COMMANDS_EXITCODE_H
#define KELADJUST_APP_COMMANDS_EXITCODE_H

namespace keladjust::app {

/// What the program tells the shell.
enum ExitCode : int {
    exitAllFine = 0,
    exitSomeFailed = 1,    ///< at least one picture, preset or table could not be made
    exitUsage = 2,         ///< the command line was refused; nothing was written
    exitInterrupted = 130  ///< Ctrl-C; what was written before is whole
};

struct ExitMeaning {
    ExitCode code;
    const char* meaning;  ///< in a few words, for help and manual
};

inline constexpr ExitMeaning exitMeanings[] = {
    {exitAllFine, "all fine"},
    {exitSomeFailed, "something failed"},
    {exitUsage, "wrong usage"},
    {exitInterrupted, "interrupted"},
};

}  // namespace keladjust::app

#endif
