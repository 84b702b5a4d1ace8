#include "settings/PresetFile.h"

#include <cstdint>

#include "files/InputFile.h"
#include "settings/Preset.h"
#include "text/Failure.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

/// Some hundred times as much as all settings take.
constexpr std::uint64_t largestPreset = std::uint64_t{1} << 20;

}  // namespace

Settings settingsFromPresetFile(const std::string& name) {
    Bytes bytes;
    try {
        bytes = readFile(pathFromText(name), {.largest = largestPreset});
    } catch (const Failure& failure) {
        throw UsageError(name + ": " + failure.what());
    }
    return settingsFromPreset(std::string(bytes.begin(), bytes.end()), name);
}

}  // namespace keladjust::app
