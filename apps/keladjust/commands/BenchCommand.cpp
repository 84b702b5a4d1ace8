#include "commands/BenchCommand.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "codecs/PictureFile.h"
#include "commands/CommandLine.h"
#include "commands/ExitCode.h"
#include "commands/StageTimes.h"
#include "files/AtomicFile.h"
#include "text/BarChart.h"
#include "text/Failure.h"
#include "text/NumberText.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

namespace fs = std::filesystem;

constexpr const char* benchDescription =
    "Prints how long each stage takes on a picture, on the CPU of this machine, beside a pass "
    "that\n"
    "does no more than read and write it. Settings, where some are given, get a line of their "
    "own:\n"
    "all of them at once, as a host runs them.";

const std::vector<std::string> benchExamples = {
    "keladjust bench photo.jpg",
    "keladjust bench photo.jpg --runs 9 --threads 1 -o chart.svg",
    "keladjust bench photo.jpg --preset warm.json --clarity 20",
};

struct BenchOptions {
    fs::path picture;
    std::optional<fs::path> chart;
    std::optional<_AdjustParam> settings;
    int runs = 5;
    int threads = 0;  ///< 0: as many as cores
    PixelBound bound;
};

/// The command line with what it says.
struct BenchLine {
    CommandLine line{"keladjust bench", benchDescription, benchExamples};
    std::string picture;
    BenchOptions options;

    BenchLine() {
        CLI::App& app = line.app();
        line.offer(app.add_option("PICTURE", picture, "The picture to measure with")->required(),
                   {Offer::Kind::pictures});
        line.offer(app.add_option_function<std::string>(
                          "-o,--output",
                          [this](const std::string& text) { options.chart = pathFromText(text); },
                          "Draw the times as a bar chart, too: an SVG file")
                       ->type_name("FILE"),
                   {Offer::Kind::files});
        app.add_option("--runs", options.runs,
                       "1..1000 runs of each stage, of which the median counts")
            ->check(CLI::Range(1, 1000))
            ->type_name("N");
        app.add_option("--threads", options.threads, "1..1024 threads; usually one per core")
            ->check(CLI::Range(1, 1024))
            ->type_name("N");
        line.addPixelBound(options.bound);
    }
};

std::optional<BenchOptions> parseBenchOptions(const std::vector<std::string>& arguments) {
    BenchLine asked;
    if (!asked.line.parse(arguments)) return std::nullopt;

    BenchOptions options = asked.options;
    options.picture = pathFromText(asked.picture);
    const Settings settings = asked.line.settings();
    if (!settings.empty()) options.settings = settings.record();
    return options;
}

void refuseToReplacePicture(const BenchOptions& options) {
    std::error_code error;
    if (options.chart && fs::equivalent(*options.chart, options.picture, error)) {
        throw UsageError(textOf(*options.chart) + " is the picture and would be overwritten; " +
                         "choose another name");
    }
}

Photo readPhoto(const fs::path& path, const PixelBound& bound) {
    try {
        const PictureFile file(path, bound);
        return file.codec.decode(file.bytes, bound);
    } catch (const Failure& failure) {
        throw Failure(textOf(path) + ": " + failure.what());
    }
}

/// Before minutes of measuring rather than after them.
void expectToBeWritable(const fs::path& chart) {
    AtomicFile(chart).write({});
}

int threadsOf(const BenchOptions& options) {
    if (options.threads > 0) return options.threads;
    return static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
}

std::string headline(const BenchOptions& options, const Photo& photo, double megapixels) {
    const std::string threads = options.threads == 1
                                    ? "1 thread"
                                    : "up to " + std::to_string(threadsOf(options)) + " threads";
    return textOf(options.picture.filename()) + ": " + std::to_string(photo.width()) + " x " +
           std::to_string(photo.height()) + ", " + numberText(megapixels, 1) + " megapixels, " +
           threads + ", median of " + std::to_string(options.runs);
}

void printLine(const std::string& stage, const std::string& time, const std::string& speed) {
    constexpr std::size_t stageWidth = 32, timeWidth = 10, speedWidth = 14;
    const auto padding = [](const std::string& text, std::size_t width) {
        return std::string(width > text.size() ? width - text.size() : 1, ' ');
    };
    std::cout << stage << padding(stage, stageWidth) << padding(time, timeWidth) << time
              << padding(speed, speedWidth) << speed << std::endl;
}

}  // namespace

int runBenchCommand(const std::vector<std::string>& arguments) {
    const auto options = parseBenchOptions(arguments);
    if (!options) return exitAllFine;
    refuseToReplacePicture(*options);
    const Photo photo = readPhoto(options->picture, options->bound);
    if (options->chart) expectToBeWritable(*options->chart);

    const double megapixels = static_cast<double>(photo.width()) * photo.height() / 1e6;
    const std::string title = headline(*options, photo, megapixels);
    std::cout << title << "\n\n";
    printLine("stage", "ms", "megapixels/s");
    std::vector<Bar> bars;
    if (options->threads > 0) setMaxThreads(options->threads);
    const auto tell = [&](const StageTime& time) {
        const std::string milliseconds = numberText(time.seconds * 1e3, 2);
        printLine(time.stage, milliseconds, numberText(megapixels / time.seconds, 1));
        bars.push_back({time.stage, time.seconds, milliseconds + " ms"});
    };
    timeStages(photo, options->settings, options->runs, threadsOf(*options), tell);
    if (options->chart) writeFile(*options->chart, barChart(title, bars));
    return exitAllFine;
}

CommandDescription describeBenchCommand() {
    return BenchLine().line.describe();
}

}  // namespace keladjust::app
