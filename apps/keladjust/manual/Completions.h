#ifndef KELADJUST_APP_MANUAL_COMPLETIONS_H
#define KELADJUST_APP_MANUAL_COMPLETIONS_H

#include <string>

namespace keladjust::app {

/// What completes the program's command lines, in the language of each shell.
std::string bashCompletion();
std::string zshCompletion();
std::string fishCompletion();

}  // namespace keladjust::app

#endif
