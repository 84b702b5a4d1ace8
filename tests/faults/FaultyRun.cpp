#include "FaultyRun.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ostream>

#include "files/AtomicFile.h"
#include "files/InputFile.h"

namespace keladjust::faults {

namespace {

namespace fs = std::filesystem;

std::string textIn(const fs::path& path) {
    const app::Bytes bytes = app::readFile(path);
    return {bytes.begin(), bytes.end()};
}

/// Each run has a folder of its own, which must not make a difference.
std::string without(const fs::path& folder, std::string text) {
    const std::string name = folder.string() + '/';
    for (auto place = text.find(name); place != std::string::npos; place = text.find(name)) {
        text.erase(place, name.size());
    }
    return text;
}

/// What every run starts from, made once.
const test::TemporaryFolder& preparedFolder() {
    static const test::TemporaryFolder folder;
    static const bool prepared = (prepareFolder(folder.path()), true);
    static_cast<void>(prepared);
    return folder;
}

void redirect(int descriptor, const fs::path& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(file, descriptor);
    ::close(file);
}

/// Does not return: the program takes this process's place.
[[noreturn]] void become(const fs::path& program, std::vector<std::string> arguments,
                         const fs::path& folder) {
    if (::chdir(folder.c_str()) != 0) ::_exit(126);
    arguments.insert(arguments.begin(), program.string());
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    ::execv(pointers[0], pointers.data());
    ::_exit(127);
}

constexpr unsigned secondsForEver = 120;

bool isTemporary(const std::string& name) {
    return name.find(".keladjust-") != std::string::npos;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
    out << callNames[static_cast<std::size_t>(fault.call)] << ' ' << fault.number << ": ";
    switch (fault.effect) {
        case Effect::none:
            return out << "nothing";
        case Effect::error:
            return out << std::strerror(fault.error);
        case Effect::errorsOn:
            return out << std::strerror(fault.error) << " from here on";
        case Effect::interrupt:
            return out << "interrupted";
        case Effect::half:
            return out << "half of it";
        case Effect::truncate:
            return out << "the file is truncated";
        case Effect::vanish:
            return out << "the file is gone";
        case Effect::kill:
            return out << "killed";
        case Effect::killHalfway:
            return out << "killed halfway";
    }
    return out;
}

Contents contentsOf(const test::TemporaryFolder& folder) {
    Contents contents;
    for (const std::string& name : folder.files()) contents[name] = app::readFile(folder / name);
    return contents;
}

FaultyOutcome runWithFault(const fs::path& program, const fs::path& injector,
                           const std::vector<std::string>& arguments,
                           const std::optional<Fault>& fault) {
    const test::TemporaryFolder folder;
    fs::copy(preparedFolder().path(), folder.path());
    FaultyOutcome outcome;
    outcome.before = contentsOf(preparedFolder());

    const test::TemporaryFolder reports;
    const fs::path counters = reports / "counters";
    app::writeFile(counters, app::Bytes(sizeof(Counters), 0));
    const pid_t process = ::fork();
    if (process == 0) {
        // A program that waits for ever is killed, and told by that.
        ::alarm(secondsForEver);
        redirect(STDOUT_FILENO, reports / "output");
        redirect(STDERR_FILENO, reports / "errors");
        ::setenv("LD_PRELOAD", injector.c_str(), 1);
        ::setenv(countersVariable, counters.c_str(), 1);
        if (fault) {
            const std::string plan = std::to_string(static_cast<std::size_t>(fault->call)) + ' ' +
                                     std::to_string(fault->number) + ' ' +
                                     std::to_string(static_cast<int>(fault->effect)) + ' ' +
                                     std::to_string(fault->error);
            ::setenv(planVariable, plan.c_str(), 1);
        }
        become(program, arguments, folder.path());
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    if (WIFEXITED(status)) outcome.code = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
    outcome.output = without(folder.path(), textIn(reports / "output"));
    outcome.errors = without(folder.path(), textIn(reports / "errors"));
    outcome.after = contentsOf(folder);
    const app::Bytes counted = app::readFile(counters);
    std::memcpy(outcome.calls.data(), counted.data(), sizeof outcome.calls);
    return outcome;
}

bool madeAll(const Scenario& scenario, const FaultyOutcome& undisturbed,
             const FaultyOutcome& outcome) {
    return std::ranges::all_of(scenario.outputs, [&](const std::string& name) {
        const auto made = outcome.after.find(name);
        return made != outcome.after.end() && made->second == undisturbed.after.at(name);
    });
}

void expectWholeFiles(const Scenario& scenario, const FaultyOutcome& undisturbed,
                      const FaultyOutcome& outcome) {
    for (const auto& [name, bytes] : outcome.before) {
        EXPECT_TRUE(outcome.after.contains(name)) << name << " is gone";
    }
    for (const auto& [name, bytes] : outcome.after) {
        if (isTemporary(name)) {
            EXPECT_NE(outcome.signal, 0) << name << " is left";
            continue;
        }
        const auto old = outcome.before.find(name);
        const bool isOld = old != outcome.before.end() && bytes == old->second;
        const bool mayBeNew = std::ranges::count(scenario.outputs, name) > 0;
        const bool isNew = mayBeNew && bytes == undisturbed.after.at(name);
        EXPECT_TRUE(isOld || isNew) << name << " is neither old nor new";
    }
}

void expectUndisturbed(const FaultyOutcome& undisturbed, const FaultyOutcome& outcome) {
    EXPECT_EQ(outcome.code, undisturbed.code);
    EXPECT_EQ(outcome.errors, undisturbed.errors);
    EXPECT_EQ(outcome.output, undisturbed.output);
    EXPECT_EQ(outcome.after, undisturbed.after);
}

}  // namespace keladjust::faults
