#include "pictures/Adjuster.h"

#include <cstdint>

#include "pictures/PhotoImage.h"
#include "platform/AllocationWatch.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

std::int32_t asksToStop(void* stop, float) {
    return (*static_cast<bool (**)()>(stop))() ? 1 : 0;
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

Adjustment Adjuster::adjust(Photo& photo, const _AdjustParam& record) {
    const std::lock_guard lock(oneAtATime_);
    const PhotoImage image(photo);
    KeladjustRun run{};
    run.size = sizeof run;
    run.maxThreads = threads_;
    if (use_ == GpuUse::always) {
        run.path = KELADJUST_GPU;
    } else if (engine_ == nullptr) {
        run.path = KELADJUST_CPU;
    } else {
        run.path = KELADJUST_AUTO;
        run.hardwareOnly = 1;
    }
    if (stop_ != nullptr) {
        run.progress = asksToStop;
        run.user = &stop_;
    }
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
