#include "commands/Program.h"

#include <cstdio>
#include <new>
#include <string>
#include <system_error>
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

// By fputs, as all of these messages, which needs no memory and throws nothing.
int tellShortOfMemory() {
    std::fputs("keladjust: not enough memory; close other programs\n", stderr);
    return exitSomeFailed;
}

int tell(const std::exception& error) {
    std::fputs("keladjust: ", stderr);
    std::fputs(error.what(), stderr);
    std::fputs("\n", stderr);
    return exitSomeFailed;
}

}  // namespace

int runProgram(int count, char** values) noexcept {
    try {
        return runCommand(platform::arguments(count, values));
    } catch (const UsageError& error) {
        tell(error);
        std::fputs("Try keladjust --help.\n", stderr);
        return exitUsage;
    } catch (const std::bad_alloc&) {
        return tellShortOfMemory();
    } catch (const std::system_error& error) {
        // The way in which functions for paths say it.
        return error.code() == std::errc::not_enough_memory ? tellShortOfMemory() : tell(error);
    } catch (const std::exception& error) {
        return tell(error);
    }
}

}  // namespace keladjust::app
