#include "commands/Program.h"

#include <cstdio>
#include <new>
#include <string>
#include <vector>

#include "commands/AdjustCommand.h"
#include "commands/BenchCommand.h"
#include "commands/ExitCode.h"
#include "commands/LutCommand.h"
#include "platform/Console.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

int runCommand(const std::vector<std::string>& arguments) {
    if (!arguments.empty() && arguments.front() == "lut") {
        return runLutCommand({arguments.begin() + 1, arguments.end()});
    }
    if (!arguments.empty() && arguments.front() == "bench") {
        return runBenchCommand({arguments.begin() + 1, arguments.end()});
    }
    return runAdjustCommand(arguments);
}

}  // namespace

// The messages go out by fputs, which needs no memory and throws nothing.
int runProgram(int count, char** values) noexcept {
    try {
        return runCommand(platform::arguments(count, values));
    } catch (const UsageError& error) {
        std::fputs("keladjust: ", stderr);
        std::fputs(error.what(), stderr);
        std::fputs("\nTry keladjust --help.\n", stderr);
        return exitUsage;
    } catch (const std::bad_alloc&) {
        std::fputs("keladjust: not enough memory; close other programs\n", stderr);
    } catch (const std::exception& error) {
        std::fputs("keladjust: ", stderr);
        std::fputs(error.what(), stderr);
        std::fputs("\n", stderr);
    }
    return exitSomeFailed;
}

}  // namespace keladjust::app
