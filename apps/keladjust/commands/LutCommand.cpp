#include "commands/LutCommand.h"

#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>

#include "commands/CommandLine.h"
#include "commands/ExitCode.h"
#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "pictures/Engine.h"
#include "platform/FileNames.h"
#include "text/CubeText.h"
#include "text/Failure.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

constexpr const char* lutDescription =
    "Writes settings as a 3D colour table of 32 x 32 x 32 entries in a cube file.\n"
    "Clarity, sharpening, the vignette and all after it have no part in a colour table.";

constexpr const char* lutExamples =
    "Examples:\n"
    "  keladjust lut --preset warm.json -o warm.cube\n"
    "  keladjust lut --exposure 20 --vibrance 30 --order red-fastest -o look.cube";

void refuseToReplacePresets(const std::filesystem::path& output, const CommandLine& line) {
    std::error_code error;
    for (const auto& preset : line.presets()) {
        if (std::filesystem::equivalent(output, preset, error)) {
            throw UsageError(textOf(output) + " is a preset and would be overwritten; choose " +
                             "another name");
        }
    }
}

/// The library does not tell whether the disk has taken all that it wrote.
bool isWhole(const std::filesystem::path& cube) {
    constexpr std::ptrdiff_t headerLines = 8;
    constexpr std::ptrdiff_t colours = cubeSize * cubeSize * cubeSize;
    return std::ranges::count(readFile(cube), '\n') == headerLines + colours;
}

void writeBlueFastest(const _AdjustParam& record, const std::filesystem::path& output) {
    AtomicFile file(output);
    file.write({});  // finds out, with a better message, whether the library can write there
    const auto name = platform::narrow(file.temporary());
    if (!name || !writeLut3DFile(record, name->c_str())) {
        throw Failure("cannot write " + textOf(output) +
                      "; check that the folder exists and you may write to it");
    }
    if (!isWhole(file.temporary())) {
        throw Failure("cannot write " + textOf(output) + ": the disk did not take all of it; " +
                      "choose another place with -o");
    }
    file.commit();
}

void writeRedFastest(const _AdjustParam& record, const std::filesystem::path& output) {
    const float* table = getLut3dData(record);
    if (table == nullptr) throw Failure("the colour table could not be made; close other programs");
    writeFile(output, cubeRedFastest(table));
}

}  // namespace

int runLutCommand(const std::vector<std::string>& arguments) {
    CommandLine line(lutDescription);
    CLI::App& app = line.app();
    app.name("keladjust lut");
    app.footer(lutExamples);
    std::string output;
    app.add_option("-o,--output", output, "The cube file to write")->type_name("FILE")->required();
    std::string order = "blue-fastest";
    app.add_option("--order", order,
                   "blue-fastest (usual here) or red-fastest (what most other programs read)")
        ->check(CLI::IsMember({"blue-fastest", "red-fastest"}))
        ->type_name("NAME");
    if (!line.parse(arguments)) return exitAllFine;

    const std::filesystem::path path = pathFromText(output);
    const _AdjustParam record = line.settings().record();
    refuseToReplacePresets(path, line);
    // The library makes colour tables only between start and release.
    const Engine engine(Engine::Configuration::none);
    if (order == "red-fastest") {
        writeRedFastest(record, path);
    } else {
        writeBlueFastest(record, path);
    }
    return exitAllFine;
}

}  // namespace keladjust::app
