#include "LutCommand.h"

#include "AtomicFile.h"
#include "CommandLine.h"
#include "CubeText.h"
#include "Engine.h"
#include "ExitCode.h"
#include "Failure.h"
#include "InputFile.h"
#include "PathText.h"
#include "platform/FileNames.h"

#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>

namespace keladjust::app {
namespace {

constexpr const char* LUT_DESCRIPTION =
    "Writes settings as a 3D colour table of 32 x 32 x 32 entries in a cube file.\n"
    "Clarity, sharpening, the vignette and all after it have no part in a colour table.";

constexpr const char* LUT_EXAMPLES =
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
    constexpr std::ptrdiff_t colours = CUBE_SIZE * CUBE_SIZE * CUBE_SIZE;
    return std::ranges::count(readFile(cube), '\n') == headerLines + colours;
}

void writeBlueFastest(const _AdjustParam& record, const std::filesystem::path& output) {
    AtomicFile file(output);
    file.write({});  // finds out, with a better message, whether the library can write there
    if (!writeLut3DFile(record, platform::narrow(file.temporary()).c_str())) {
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
    if (!table) throw Failure("the colour table could not be made; close other programs");
    writeFile(output, cubeRedFastest(table));
}

}  // namespace

int runLutCommand(const std::vector<std::string>& arguments) {
    CommandLine line(LUT_DESCRIPTION);
    CLI::App& app = line.app();
    app.name("keladjust lut");
    app.footer(LUT_EXAMPLES);
    std::string output;
    app.add_option("-o,--output", output, "The cube file to write")->type_name("FILE")->required();
    std::string order = "blue-fastest";
    app.add_option("--order", order,
                   "blue-fastest (usual here) or red-fastest (what most other programs read)")
        ->check(CLI::IsMember({"blue-fastest", "red-fastest"}))
        ->type_name("NAME");
    if (!line.parse(arguments)) return EXIT_ALL_FINE;

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
    return EXIT_ALL_FINE;
}

}  // namespace keladjust::app
