#include "pictures/Adjuster.h"

#include "pictures/PhotoImage.h"
#include "pictures/SoftwareDriver.h"
#include "text/Failure.h"

namespace keladjust::app {

namespace {

void runLibrary(Photo& photo, const _AdjustParam& record) {
    const PhotoImage image(photo);
    doAdjust(image.get(), record);
}

}  // namespace

Adjuster::Adjuster(GpuUse use) : use_(use) {
    if (use_ == GpuUse::never) return;
    startEngine();
    if (engine_ == nullptr) refuseIfGpuMust(obstacle_);
}

void Adjuster::startEngine() {
    try {
        engine_ = std::make_unique<Engine>(Engine::Configuration::ofTheProgram);
    } catch (const Failure& failure) {
        obstacle_ = failure.what();  // a folder whose name the library cannot be told
        return;
    }
    if (engine_->obstacle()) {
        obstacle_ = *engine_->obstacle();
        engine_.reset();
    } else if (use_ == GpuUse::whenPossible && rendersOnCpu(engine_->driver())) {
        obstacle_ = "the driver works on the CPU: " + engine_->driver();
        engine_.reset();
    }
}

void Adjuster::refuseIfGpuMust(const std::string& obstacle) const {
    if (use_ != GpuUse::always) return;
    throw Failure("the GPU cannot be used (" + obstacle + "); use --auto or --cpu");
}

Adjustment Adjuster::adjust(Photo& photo, const _AdjustParam& record) {
    const std::lock_guard lock(oneAtATime_);
    if (engine_ == nullptr) {
        refuseIfGpuMust(obstacle_);
        runLibrary(photo, record);
        return {false, obstacle_};
    }
    Photo before = photo;
    runLibrary(photo, record);
    const auto refusal = engine_->refusal();
    if (!refusal) return {true, ""};

    // The later stages have run all the same: on what was not rendered.
    photo = std::move(before);
    engine_.reset();
    if (use_ != GpuUse::always) runLibrary(photo, record);
    // Other pictures may fare better, and the engine may have ended with this one.
    startEngine();
    refuseIfGpuMust(*refusal);
    return {false, *refusal};
}

}  // namespace keladjust::app
