#include "pictures/Engine.h"

#include <keladjust/keladjust.h>

#include <algorithm>
#include <string_view>

#include "platform/FileNames.h"
#include "platform/ProgramFolder.h"
#include "text/Failure.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view startFailed = "The engine does not start: ";
constexpr std::string_view driverName = "Device Name: ";
constexpr std::string_view driverVersion = "GL version is: ";
constexpr std::string_view driverTooOld[] = {"GL version is too low",
                                             "Using C algorithm to running!"};
constexpr std::string_view effectMissing = "Effects are missing";
constexpr std::string_view notRendered = "The picture is not rendered and stays as it was";

/// Where plugins.cfg and resources.cfg are: beside the program, or where it was installed with
/// them.
fs::path configurationFolder() {
    fs::path beside = platform::programFolder();
    std::error_code error;
    if (fs::exists(beside / "plugins.cfg", error)) return beside;
    return beside / KELADJUST_INSTALLED_CONFIG;
}

/// What the library puts in front of file names.
///
/// @throws Failure for a folder whose name the library cannot be told
std::string prefix(const fs::path& folder) {
    const auto name = platform::narrow(folder / "");
    if (!name) {
        throw Failure("letters in " + textOf(folder) +
                      " are none of this system's; use another folder");
    }
    return *name;
}

/// Without the time of day.
std::string withoutTime(const std::string& line) {
    constexpr std::size_t timeLength = std::string_view("12:34:56: ").size();
    return line.substr(std::min(line.size(), timeLength));
}

/// The engine's exceptions say "kind: what happened in function at file (line 1)"; the middle is
/// for people.
std::string withoutPlace(const std::string& exception) {
    const std::size_t kind = exception.find(": ");
    const std::size_t begin = kind == std::string::npos ? 0 : kind + 2;
    return exception.substr(begin, exception.rfind(" in ") - begin);
}

/// What stands behind `start` in the last line that begins with it.
std::optional<std::string> lineAfter(const std::vector<std::string>& lines,
                                     std::string_view start) {
    const auto line = std::find_if(lines.rbegin(), lines.rend(), [start](const std::string& each) {
        return each.starts_with(start);
    });
    if (line == lines.rend()) return std::nullopt;
    return line->substr(start.size());
}

}  // namespace

Engine::Engine(Configuration configuration) {
    setLogPath(prefix(folder_.path()).c_str());
    const std::string files =
        prefix(configuration == Configuration::none ? folder_.path() : configurationFolder());
    const bool started = initOgreRunTime(files.c_str(), files.c_str());
    log_.open(folder_.path() / "Ogre.log");
    // Gone by now where that is possible, so that nothing stays even if the program is killed.
    folder_.remove();
    obstacle_ = obstacleAfterStart(started);
}

Engine::~Engine() {
    releaseOgre();
}

std::optional<std::string> Engine::obstacleAfterStart(bool started) {
    const std::vector<std::string> lines = newLines();
    if (!started) return withoutPlace(lineAfter(lines, startFailed).value_or("no reason is known"));
    const auto version = lineAfter(lines, driverVersion);
    if (!version) return "the log of the rendering engine cannot be read";
    driver_ = lineAfter(lines, driverName).value_or("");
    for (const std::string_view tooOld : driverTooOld) {
        if (lineAfter(lines, tooOld)) return "OpenGL 3.2 is needed, the driver has " + *version;
    }
    if (lineAfter(lines, effectMissing)) return "the rendering engine has no effects";
    return std::nullopt;
}

std::optional<std::string> Engine::refusal() {
    const std::vector<std::string> lines = newLines();
    const auto refused = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.starts_with(notRendered);
    });
    if (refused == lines.end()) return std::nullopt;
    // An exception's reason follows in the same line; any other stands in the line before.
    if (refused->size() > notRendered.size()) return withoutPlace(*refused);
    return refused == lines.begin() ? "no reason is known" : *std::prev(refused);
}

std::vector<std::string> Engine::newLines() {
    log_.clear();
    // Some libraries read no more of a file that has once come to its end until it is sought in.
    log_.seekg(0, std::ios::cur);
    std::vector<std::string> lines;
    for (std::string line; std::getline(log_, line);) lines.push_back(withoutTime(line));
    return lines;
}

}  // namespace keladjust::app
