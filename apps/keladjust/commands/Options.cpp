#include "commands/Options.h"

#include <algorithm>
#include <thread>

#include "commands/CommandLine.h"
#include "commands/ExitCode.h"
#include "text/Failure.h"
#include "text/NearestName.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

constexpr const char* adjustDescription =
    "Adjusts pictures: JPEG, PNG, TIFF and WebP.\n"
    "See also: keladjust lut --help, for colour tables; keladjust bench --help, for speed.";

const std::vector<std::string> adjustExamples = {
    "keladjust photo.jpg --exposure 20 --temperature 13000 -o brighter.jpg",
    "keladjust *.jpg --preset warm.json --shadows 30 -o out/ --jobs 4",
    "keladjust photo.jpg --red-hue 15 --red-saturation -20 --compare -o out/",
    "keladjust photo.jpg --sheet clarity -o out/",
    "keladjust --contrast 20 --vibrance 30 --save-preset lively.json",
};

std::string exitStatus() {
    std::string text = "Exit status:";
    for (const ExitMeaning& exit : exitMeanings) {
        if (exit.code != exitAllFine) text += ',';
        text += ' ' + std::to_string(exit.code) + ' ' + exit.meaning;
    }
    return text + '.';
}

/// The names that --format takes.
std::vector<std::string> formatNames() {
    std::vector<std::string> names;
    for (const Codec* codec : codecs()) {
        std::string name(codec->name());
        for (char& letter : name) {
            if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
        }
        names.push_back(name);
    }
    return names;
}

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

/// The command line with what it says.
struct AdjustLine {
    CommandLine line{"keladjust", adjustDescription, adjustExamples, exitStatus()};
    Options options;
    std::vector<std::string> inputs;
    bool verbose = false;
    bool quiet = false;

    AdjustLine() {
        line.offer(line.app().add_option("PICTURE", inputs, "Pictures to adjust"),
                   {Offer::Kind::pictures});
        addOutput();
        addPreset();
        addRunning();
    }

private:
    void addOutput() {
        CLI::App& app = line.app();
        const std::string output = "Output";
        line.offer(app.add_option_function<std::string>(
                          "-o,--output",
                          [this](const std::string& text) { options.output = pathFromText(text); },
                          "Where to write: a file; or a folder, if it ends with a separator or "
                          "there are several pictures")
                       ->type_name("PATH")
                       ->group(output),
                   {Offer::Kind::files});
        app.add_flag("--in-place", options.inPlace, "Replace the pictures themselves")
            ->group(output);
        line.offer(app.add_option_function<std::string>(
                          "--format",
                          [this](const std::string& text) { options.format = parseFormat(text); },
                          "jpeg, png, tiff or webp, whatever the names say")
                       ->type_name("NAME")
                       ->group(output),
                   {Offer::Kind::words, formatNames()});
        app.add_option("--quality", options.encoding.quality,
                       "1..100, of JPEG and WebP; usually 92")
            ->check(CLI::Range(1, 100))
            ->type_name("N")
            ->group(output);
        app.add_flag("--lossless", options.encoding.lossless, "Write WebP without loss")
            ->group(output);
        app.add_flag("--compare", options.compare,
                     "Write NAME-compare too: before and after, side by side")
            ->group(output);
        line.offer(app.add_option_function<std::string>(
                          "--sheet",
                          [this](const std::string& text) { options.sheet = parseSetting(text); },
                          "Write NAME-sheet-SETTING too: small copies over that setting's range")
                       ->type_name("SETTING")
                       ->group(output),
                   {Offer::Kind::words, settingNames()});
    }

    void addPreset() {
        line.offer(
            line.app()
                .add_option_function<std::string>(
                    "--save-preset",
                    [this](const std::string& text) { options.savePreset = pathFromText(text); },
                    "Write the settings given here, presets included, as a preset")
                ->type_name("FILE")
                ->group("Settings"),
            {Offer::Kind::presets});
    }

    void addRunning() {
        CLI::App& app = line.app();
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
        const auto choose = [this](GpuUse use) { return [this, use] { options.gpu = use; }; };
        CLI::Option* autoFlag =
            app.add_flag_callback("--auto", choose(GpuUse::whenPossible),
                                  "Adjust on a graphics card where there is one and it can")
                ->group(running);
        CLI::Option* gpuFlag = app.add_flag_callback("--gpu", choose(GpuUse::always),
                                                     "Adjust on the GPU or not at all")
                                   ->excludes(autoFlag)
                                   ->group(running);
        app.add_flag_callback("--cpu", choose(GpuUse::never),
                              "Adjust on the CPU (usual): to the byte the same on every machine")
            ->excludes(autoFlag)
            ->excludes(gpuFlag)
            ->group(running);
        CLI::Option* verboseFlag =
            app.add_flag("-v,--verbose", verbose, "Say more about each picture")->group(running);
        app.add_flag("-q,--quiet", quiet, "Print errors only")
            ->excludes(verboseFlag)
            ->group(running);
    }
};

}  // namespace

std::optional<Options> parseOptions(const std::vector<std::string>& arguments) {
    AdjustLine asked;
    if (!asked.line.parse(arguments)) return std::nullopt;
    Options options = asked.options;
    for (const std::string& input : asked.inputs) options.inputs.push_back(pathFromText(input));
    options.chatter = asked.quiet     ? Chatter::quiet
                      : asked.verbose ? Chatter::verbose
                                      : Chatter::normal;
    refuseContradictions(options);
    options.settings = asked.line.settings();
    return options;
}

CommandDescription describeOptions() {
    return AdjustLine().line.describe();
}

}  // namespace keladjust::app
