#include "AdjustCommand.h"

#include "AtomicFile.h"
#include "Batch.h"
#include "ExitCode.h"
#include "Failure.h"
#include "Interrupt.h"
#include "Narrator.h"
#include "Options.h"
#include "OutputPlan.h"
#include "PathText.h"
#include "Preset.h"
#include "platform/Console.h"
#include "platform/FileNames.h"

#include <keladjust/keladjust.h>

#include <algorithm>

namespace keladjust::app {
namespace {

void createFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder)) {
        throw Failure("cannot create the folder " + textOf(folder) + ": " +
                      platform::faultIn(folder).value_or(error.message()) +
                      "; choose another place with -o");
    }
}

bool isIdentity(const _AdjustParam& record) {
    return std::ranges::all_of(
        fields(), [&](const Field& field) { return field.read(record) == field.identity; });
}

/// A picture that stays as it is need not wait for the engine.
GpuUse gpuUse(const Options& options) {
    const bool changesNothing = isIdentity(options.settings.record()) && !options.sheet;
    return options.gpu == GpuUse::whenPossible && changesNothing ? GpuUse::never : options.gpu;
}

int adjustPictures(const Options& options, const std::vector<PicturePlan>& plans,
                   Adjuster& adjuster) {
    if (options.threads > 0) setMaxThreads(options.threads);
    const JobSettings settings{options.settings.record(), options.encoding, options.sheet};
    Narrator narrator(plans.size(), options.chatter, platform::errorsGoToTerminal());
    catchInterrupts();
    narrator.begin();
    runBatch(plans, settings, adjuster, options.jobs, interrupted,
             [&](const JobReport& report) { narrator.tell(report); });
    narrator.end(interrupted());
    if (interrupted()) return EXIT_INTERRUPTED;
    return narrator.anyFailed() ? EXIT_SOME_FAILED : EXIT_ALL_FINE;
}

}  // namespace

int runAdjustCommand(const std::vector<std::string>& arguments) {
    const auto options = parseOptions(arguments);
    if (!options) return EXIT_ALL_FINE;
    const OutputPlan plan = planOutputs(*options);
    // Before anything is written, because the engine may be a must and not come up.
    Adjuster adjuster(plan.pictures.empty() ? GpuUse::never : gpuUse(*options));
    if (plan.folder) createFolder(*plan.folder);
    if (options->savePreset) writeFile(*options->savePreset, presetFromSettings(options->settings));
    return plan.pictures.empty() ? EXIT_ALL_FINE
                                 : adjustPictures(*options, plan.pictures, adjuster);
}

}  // namespace keladjust::app
