#include "commands/AdjustCommand.h"

#include <keladjust/keladjust.h>

#include <algorithm>

#include "commands/Batch.h"
#include "commands/ExitCode.h"
#include "commands/Interrupt.h"
#include "commands/Narrator.h"
#include "commands/Options.h"
#include "commands/OutputPlan.h"
#include "files/AtomicFile.h"
#include "platform/Console.h"
#include "platform/FileNames.h"
#include "settings/Preset.h"
#include "text/Failure.h"
#include "text/PathText.h"

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
    return std::ranges::all_of(allSettings(), [&](const KeladjustSetting& setting) {
        return isAtIdentity(record, setting);
    });
}

/// A picture that stays as it is need not wait for the engine.
GpuUse gpuUse(const Options& options) {
    const bool changesNothing = isIdentity(options.settings.record()) && options.sheet == nullptr;
    return options.gpu == GpuUse::whenPossible && changesNothing ? GpuUse::never : options.gpu;
}

int adjustPictures(const Options& options, const std::vector<PicturePlan>& plans,
                   Adjuster& adjuster) {
    const JobSettings settings{options.settings.record(), options.encoding, options.sheet,
                               options.bound};
    Narrator narrator(plans.size(), options.chatter, platform::errorsGoToTerminal());
    catchInterrupts();
    narrator.begin();
    runBatch(plans, settings, adjuster, options.jobs, interrupted,
             [&](const JobReport& report) { narrator.tell(report); });
    narrator.end(interrupted());
    if (interrupted()) return exitInterrupted;
    return narrator.anyFailed() ? exitSomeFailed : exitAllFine;
}

}  // namespace

int runAdjustCommand(const std::vector<std::string>& arguments) {
    const auto options = parseOptions(arguments);
    if (!options) return exitAllFine;
    const OutputPlan plan = planOutputs(*options);
    // Before anything is written, because the engine may be a must and not come up.
    Adjuster adjuster(plan.pictures.empty() ? GpuUse::never : gpuUse(*options), options->threads,
                      interrupted);
    if (plan.folder) createFolder(*plan.folder);
    if (options->savePreset) writeFile(*options->savePreset, presetFromSettings(options->settings));
    return plan.pictures.empty() ? exitAllFine : adjustPictures(*options, plan.pictures, adjuster);
}

}  // namespace keladjust::app
