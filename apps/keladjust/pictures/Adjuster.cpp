#include "pictures/Adjuster.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "pictures/PhotoImage.h"
#include "platform/AllocationWatch.h"
#include "settings/Record.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

std::int32_t asksToStop(void* stop, float) {
    return (*static_cast<bool (**)()>(stop))() ? 1 : 0;
}

// The others look at neighbours or at where a pixel is.
bool looksAtOnePixel(const KeladjustSetting& setting) {
    const std::string_view group = setting.group;
    return group == "Basic" || group == "Colour ranges";
}

}  // namespace

Adjuster::Adjuster(GpuUse use, int threads, bool (*stop)())
    : use_(use), threads_(threads), stop_(stop) {
    if (use_ == GpuUse::never) return;
    startEngine();
    if (use_ == GpuUse::always && engine_ == nullptr) refuse(obstacle_);
}

void Adjuster::startEngine() {
    try {
        engine_ = std::make_unique<Engine>();
        obstacle_ = obstacle();
    } catch (const Failure& failure) {
        obstacle_ = failure.what();  // a folder whose name the library cannot be told
    }
    if (!obstacle_.empty()) engine_.reset();
}

std::string Adjuster::obstacle() const {
    return Engine::obstacle(use_ == GpuUse::whenPossible);
}

void Adjuster::refuse(const std::string& obstacle) {
    throw Failure("the GPU cannot be used (" + obstacle + "); use --auto or --cpu");
}

KeladjustRun Adjuster::runOn(KeladjustPath path) {
    KeladjustRun run{};
    run.size = sizeof run;
    run.path = path;
    run.maxThreads = threads_;
    if (stop_ != nullptr) {
        run.progress = asksToStop;
        run.user = &stop_;
    }
    return run;
}

bool Adjuster::takesRows(const Photo& photo, const _AdjustParam& record) const {
    return use_ == GpuUse::never && threads_ != 1 && photo.layout() == ChannelLayout::bgra &&
           std::ranges::all_of(allSettings(), [&](const KeladjustSetting& setting) {
               return looksAtOnePixel(setting) || isAtIdentity(record, setting);
           });
}

void Adjuster::adjustRows(Photo& photo, std::uint32_t firstRow, std::uint32_t rows,
                          const _AdjustParam& record) {
    const PhotoImage image(photo, firstRow, rows);
    KeladjustRun run = runOn(KELADJUST_CPU);
    const platform::AllocationWatch watch;
    const KeladjustResult result = keladjustRun(image.get(), &record, sizeof record, &run);
    if (result == KELADJUST_CANCELLED) throw Cancelled();
    watch.throwIfOneFailed();
    if (result == KELADJUST_REFUSED) {
        throw Failure(std::string("the library refuses the picture: ") + run.reason);
    }
}

Adjustment Adjuster::adjust(Photo& photo, const _AdjustParam& record) {
    const std::lock_guard lock(oneAtATime_);
    const PhotoImage image(photo);
    KeladjustRun run = runOn(use_ == GpuUse::always ? KELADJUST_GPU
                             : engine_ == nullptr   ? KELADJUST_CPU
                                                    : KELADJUST_AUTO);
    run.hardwareOnly = run.path == KELADJUST_AUTO ? 1 : 0;
    const platform::AllocationWatch watch;
    const KeladjustResult result = keladjustRun(image.get(), &record, sizeof record, &run);
    if (result == KELADJUST_CANCELLED) throw Cancelled();
    // A stage without memory leaves the picture as it was.
    if (run.pathTaken == KELADJUST_CPU) watch.throwIfOneFailed();
    const std::string reason = engine_ == nullptr ? obstacle_ : run.reason;

    // Other pictures may fare better, and the engine may have ended with this one.
    if (engine_ != nullptr && !reason.empty() && !obstacle().empty()) {
        engine_.reset();
        startEngine();
    }
    if (result == KELADJUST_REFUSED) {
        if (use_ == GpuUse::always) refuse(reason);
        throw Failure(std::string("the library refuses the picture: ") + run.reason);
    }
    return {run.pathTaken == KELADJUST_GPU, reason};
}

}  // namespace keladjust::app
