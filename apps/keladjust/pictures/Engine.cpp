#include "pictures/Engine.h"

#include <keladjust/keladjust.h>

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

}  // namespace

Engine::Engine() {
    const std::string files = prefix(configurationFolder());
    setLogPath(prefix(folder_.path()).c_str());
    initOgreRunTime(files.c_str(), files.c_str());
    // Gone by now where that is possible, so that nothing stays even if the program is killed.
    folder_.remove();
}

Engine::~Engine() {
    releaseOgre();
}

// A record that changes nothing goes all the way to the first render.
std::string Engine::obstacle(bool hardwareOnly) {
    Photo photo(1, 1, ChannelLayout::bgra);
    const PhotoImage image(photo);
    const _AdjustParam record = usualRecord();
    KeladjustRun run{};
    run.size = sizeof run;
    run.path = hardwareOnly ? KELADJUST_AUTO : KELADJUST_GPU;
    run.hardwareOnly = hardwareOnly ? 1 : 0;
    keladjustRun(image.get(), &record, sizeof record, &run);
    if (run.pathTaken == KELADJUST_GPU) return {};
    return run.reason[0] != '\0' ? run.reason : "no reason is known";
}

}  // namespace keladjust::app
