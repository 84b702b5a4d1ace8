#include "pictures/Engine.h"

#include <keladjust/keladjust.h>

#include <fstream>
#include <string_view>

#include "pictures/Photo.h"
#include "pictures/PhotoImage.h"
#include "platform/FileNames.h"
#include "platform/ProgramFolder.h"
#include "settings/Record.h"
#include "text/Failure.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

namespace fs = std::filesystem;

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

/// The library itself does not tell.
std::string driverIn(const fs::path& logFile) {
    constexpr std::string_view label = ": Device Name: ";
    std::ifstream log(logFile);
    for (std::string line; std::getline(log, line);) {
        const std::size_t found = line.find(label);
        if (found != std::string::npos) return line.substr(found + label.size());
    }
    return {};
}

}  // namespace

Engine::Engine() {
    const std::string files = prefix(configurationFolder());
    setLogPath(prefix(folder_.path()).c_str());
    initOgreRunTime(files.c_str(), files.c_str());
    driver_ = driverIn(folder_.path() / "Ogre.log");
    // Gone by now where that is possible, so that nothing stays even if the program is killed.
    folder_.remove();
}

Engine::~Engine() {
    releaseOgre();
}

// A record that changes nothing goes all the way to the first render.
std::string Engine::obstacle() {
    Photo photo(1, 1, PixelLayout::bgra);
    const PhotoImage image(photo);
    const _AdjustParam record = usualRecord();
    KeladjustRun run{};
    run.size = sizeof run;
    run.path = KELADJUST_GPU;
    if (keladjustRun(image.get(), &record, sizeof record, &run) == KELADJUST_DONE) return {};
    return run.reason[0] != '\0' ? run.reason : "no reason is known";
}

}  // namespace keladjust::app
