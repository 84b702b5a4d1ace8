#include "commands/LutCommand.h"

#include <keladjust/keladjust.h>

#include <cstddef>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "commands/CommandLine.h"
#include "commands/ExitCode.h"
#include "files/AtomicFile.h"
#include "text/CubeText.h"
#include "text/Failure.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

constexpr const char* lutDescription =
    "Writes settings as a 3D colour table in a cube file.\n"
    "Clarity, sharpening, the vignette and all after it have no part in a colour table.";

const std::vector<std::string> lutExamples = {
    "keladjust lut --preset warm.json -o warm.cube",
    "keladjust lut --exposure 20 --vibrance 30 --order red-fastest -o look.cube",
    "keladjust lut --preset warm.json --size 64 -o fine.cube",
};

const std::string blueFastest = "blue-fastest";
const std::string redFastest = "red-fastest";

/// The command line with what it says.
struct LutLine {
    CommandLine line{"keladjust lut", lutDescription, lutExamples};
    std::string output;
    int size = 32;
    std::string order = blueFastest;

    LutLine() {
        CLI::App& app = line.app();
        line.offer(app.add_option("-o,--output", output, "The cube file to write")
                       ->type_name("FILE")
                       ->required(),
                   {Offer::Kind::files});
        app.add_option("--size", size, "2..256 colours along each axis; usually 32")
            ->check(CLI::Range(2, 256))
            ->type_name("N");
        const std::vector<std::string> orders = {blueFastest, redFastest};
        line.offer(app.add_option("--order", order,
                                  "blue-fastest (usual here) or red-fastest (what most other "
                                  "programs read)")
                       ->check(CLI::IsMember(orders))
                       ->type_name("NAME"),
                   {Offer::Kind::words, orders});
    }
};

void refuseToReplacePresets(const std::filesystem::path& output, const CommandLine& line) {
    std::error_code error;
    for (const auto& preset : line.presets()) {
        if (std::filesystem::equivalent(output, preset, error)) {
            throw UsageError(textOf(output) + " is a preset and would be overwritten; choose " +
                             "another name");
        }
    }
}

std::string cube(const _AdjustParam& record, int size, CubeOrder order) {
    const auto edge = static_cast<std::size_t>(size);
    std::vector<float> points(3 * edge * edge * edge);
    if (!keladjustBake(&record, sizeof record, size, order == CubeOrder::redFastest,
                       points.data())) {
        throw std::bad_alloc();  // nothing else can be wrong
    }
    return cubeText(points, size, order);
}

}  // namespace

int runLutCommand(const std::vector<std::string>& arguments) {
    LutLine asked;
    if (!asked.line.parse(arguments)) return exitAllFine;

    const std::filesystem::path path = pathFromText(asked.output);
    const _AdjustParam record = asked.line.settings().record();
    refuseToReplacePresets(path, asked.line);
    writeFile(path,
              cube(record, asked.size,
                   asked.order == redFastest ? CubeOrder::redFastest : CubeOrder::blueFastest));
    return exitAllFine;
}

CommandDescription describeLutCommand() {
    return LutLine().line.describe();
}

}  // namespace keladjust::app
