#include <unistd.h>

#include "platform/Console.h"

namespace keladjust::app::platform {

std::vector<std::string> arguments(int count, char** values) {
    return count > 0 ? std::vector<std::string>(values + 1, values + count)
                     : std::vector<std::string>();
}

bool errorsGoToTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

}  // namespace keladjust::app::platform
