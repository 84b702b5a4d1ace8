#include "commands/Options.h"

#include <algorithm>
#include <thread>

#include "commands/CommandLine.h"
#include "text/Failure.h"
#include "text/NearestName.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

constexpr const char* adjustDescription =
    "Adjusts pictures: JPEG, PNG, TIFF and WebP.\n"
    "See also: keladjust lut --help, for colour tables; keladjust bench --help, for speed.";

constexpr const char* adjustExamples =
    "Examples:\n"
    "  keladjust photo.jpg --exposure 20 --temperature 13000 -o brighter.jpg\n"
    "  keladjust *.jpg --preset warm.json --shadows 30 -o out/ --jobs 4\n"
    "  keladjust photo.jpg --red-hue 15 --red-saturation -20 --compare -o out/\n"
    "  keladjust photo.jpg --sheet clarity -o out/\n"
    "  keladjust --contrast 20 --vibrance 30 --save-preset lively.json\n"
    "Exit status: 0 all fine, 1 something failed, 2 wrong usage, 130 interrupted.";

/// How many pictures to read and write at a time: decoding and encoding keep about this many cores
/// busy beside the adjusting, and each picture takes memory.
int usualJobs() {
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 4u));
}

const Codec* parseFormat(const std::string& text) {
    const Codec* codec = codecForExtension(text);
    if (codec == nullptr)
        throw UsageError("--format is one of jpeg, png, tiff and webp, not \"" + text + '"');
    return codec;
}

const KeladjustSetting* parseSetting(const std::string& name) {
    const KeladjustSetting* setting = findSetting(name);
    if (setting != nullptr) return setting;
    throw UsageError("--sheet: there is no setting \"" + name + '"' +
                     suggestion(name, settingNames()));
}

void refuseContradictions(const Options& options) {
    if (options.inputs.empty()) {
        if (options.savePreset && !options.output && !options.inPlace) return;
        throw UsageError("name at least one picture");
    }
    if (options.inPlace && options.output) {
        throw UsageError("--in-place and -o exclude each other");
    }
    if (options.inPlace && options.format != nullptr) {
        throw UsageError("--in-place keeps the format; use -o with --format");
    }
    if (!options.inPlace && !options.output) {
        throw UsageError("say where to write: -o FILE, -o FOLDER/ or --in-place");
    }
}

}  // namespace

std::optional<Options> parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    CommandLine line(adjustDescription);
    CLI::App& app = line.app();
    app.footer(adjustExamples);

    std::vector<std::string> inputs;
    app.add_option("PICTURE", inputs, "Pictures to adjust");

    const std::string output = "Output";
    app.add_option_function<std::string>(
           "-o,--output", [&](const std::string& text) { options.output = pathFromText(text); },
           "Where to write: a file; or a folder, if it ends with a separator or there are several "
           "pictures")
        ->type_name("PATH")
        ->group(output);
    app.add_flag("--in-place", options.inPlace, "Replace the pictures themselves")->group(output);
    app.add_option_function<std::string>(
           "--format", [&](const std::string& text) { options.format = parseFormat(text); },
           "jpeg, png, tiff or webp, whatever the names say")
        ->type_name("NAME")
        ->group(output);
    app.add_option("--quality", options.encoding.quality, "1..100, of JPEG and WebP; usually 92")
        ->check(CLI::Range(1, 100))
        ->type_name("N")
        ->group(output);
    app.add_flag("--lossless", options.encoding.lossless, "Write WebP without loss")->group(output);
    app.add_flag("--compare", options.compare,
                 "Write NAME-compare too: before and after, side by side")
        ->group(output);
    app.add_option_function<std::string>(
           "--sheet", [&](const std::string& text) { options.sheet = parseSetting(text); },
           "Write NAME-sheet-SETTING too: small copies over that setting's range")
        ->type_name("SETTING")
        ->group(output);

    app.add_option_function<std::string>(
           "--save-preset",
           [&](const std::string& text) { options.savePreset = pathFromText(text); },
           "Write the settings given here, presets included, as a preset")
        ->type_name("FILE")
        ->group("Settings");

    const std::string running = "Running";
    options.jobs = usualJobs();
    app.add_option("--jobs", options.jobs, "1..64 pictures to read and write at a time")
        ->check(CLI::Range(1, 64))
        ->type_name("N")
        ->group(running);
    app.add_option("--threads", options.threads,
                   "1..1024 threads for adjusting; usually one per core")
        ->check(CLI::Range(1, 1024))
        ->type_name("N")
        ->group(running);
    line.addPixelBound(options.bound)->group(running);
    const auto choose = [&options](GpuUse use) { return [&options, use] { options.gpu = use; }; };
    CLI::Option* autoFlag =
        app.add_flag_callback("--auto", choose(GpuUse::whenPossible),
                              "Adjust on a graphics card where there is one and it can")
            ->group(running);
    CLI::Option* gpuFlag =
        app.add_flag_callback("--gpu", choose(GpuUse::always), "Adjust on the GPU or not at all")
            ->excludes(autoFlag)
            ->group(running);
    app.add_flag_callback("--cpu", choose(GpuUse::never),
                          "Adjust on the CPU (usual): to the byte the same on every machine")
        ->excludes(autoFlag)
        ->excludes(gpuFlag)
        ->group(running);
    bool verbose = false;
    bool quiet = false;
    CLI::Option* verboseFlag =
        app.add_flag("-v,--verbose", verbose, "Say more about each picture")->group(running);
    app.add_flag("-q,--quiet", quiet, "Print errors only")->excludes(verboseFlag)->group(running);

    if (!line.parse(arguments)) return std::nullopt;
    for (const std::string& input : inputs) options.inputs.push_back(pathFromText(input));
    options.chatter = quiet ? Chatter::quiet : verbose ? Chatter::verbose : Chatter::normal;
    refuseContradictions(options);
    options.settings = line.settings();
    return options;
}

}  // namespace keladjust::app
