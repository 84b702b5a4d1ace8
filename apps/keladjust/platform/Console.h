#ifndef KELADJUST_APP_PLATFORM_CONSOLE_H
#define KELADJUST_APP_PLATFORM_CONSOLE_H

#include <string>
#include <vector>

/// All that the program needs to know about the system it runs on.
namespace keladjust::app::platform {

/// The command line in UTF-8 without the program's name. Where it is left to programs, patterns
/// such as *.jpg have become the names of the files that they stand for.
std::vector<std::string> arguments(int count, char** values);

/// Whether standard error is a terminal that someone may be looking at.
bool errorsGoToTerminal();

}  // namespace keladjust::app::platform

#endif
