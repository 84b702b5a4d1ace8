#include "host/Pipeline.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "ImageFormat/PixelSpan.h"
#include "filters/Stages.h"
#include "platform/CallScope.h"
#include "walks/ColourMemory.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

using KernelPointer = std::unique_ptr<PixelKernel>;

/// Neighbouring per-pixel stages that wait for their common pass.
class CommonPass {
public:
    explicit CommonPass(const Picture& picture) : picture_(picture) {}

    void add(KernelPointer kernel) {
        // Two tables are one where nothing happens to a lane between them: it is stored whole, or
        // it is one of three alike.
        const bool followsTable = count_ > 0 && kernels_[count_ - 1]->table() != nullptr;
        const PixelLayout layout = picture_.layout;
        const bool lanesPass = storesLanesWhole(layout) || layout == PixelLayout::gray8;
        if (lanesPass && followsTable && kernel->table() != nullptr) {
            KernelPointer& last = kernels_[count_ - 1];
            last = std::make_unique<ComposedTable>(*last->table(), *kernel->table());
        } else {
            kernels_[count_++] = std::move(kernel);
        }
    }

    void run() {
        if (count_ == 0) return;
        std::array<const PixelKernel*, stages.size()> kernels;
        for (std::size_t i = 0; i < count_; ++i) kernels[i] = kernels_[i].get();
        runKernels(picture_, {kernels.data(), count_});
        count_ = 0;
    }

private:
    const Picture& picture_;
    std::array<KernelPointer, stages.size()> kernels_;
    std::size_t count_ = 0;
};

bool canShareAPass(const Stage& stage, const Picture& picture) {
    if (stage.forms.pixels == nullptr) return false;
    return stage.addressing == Addressing::pixels || rawWalkMeetsPixels(picture);
}

/// Puts the stage into the pass, if it can be there; false if it runs by itself.
bool joinPass(const Stage& stage, const Picture& picture, const _AdjustParam& parameters,
              CommonPass& pass) {
    if (!canShareAPass(stage, picture)) return false;
    try {
        pass.add(stage.forms.pixels(picture, stage.slots(parameters)));
        return true;
    } catch (const std::bad_alloc&) {
        return false;  // by itself it may need less, or passes the picture on
    }
}

/// Gives stages their parts of the progress, by what they take.
class Efforts {
public:
    /// Of the stages from a wing on.
    Efforts(const _AdjustParam& parameters, Wing first) {
        for (const Stage& stage : stages) {
            if (stage.wing >= first && stage.isActive(parameters)) total_ += stage.effort;
        }
    }

    /// The next part of the whole.
    platform::ProgressPart next(unsigned effort) {
        const float begin = share();
        done_ += effort;
        return {begin, share()};
    }

private:
    float share() const {
        return total_ == 0 ? 0.0f : static_cast<float>(done_) / static_cast<float>(total_);
    }

    unsigned total_ = 0;
    unsigned done_ = 0;
};

void runStages(CxImage* image, const Picture& picture, const _AdjustParam& parameters) {
    Efforts efforts(parameters, Wing::tone);
    CommonPass pass(picture);
    unsigned passEffort = 0;
    const auto runPass = [&] {
        const platform::ProgressPart part = efforts.next(passEffort);
        pass.run();
        passEffort = 0;
    };
    for (const Stage& stage : stages) {
        if (!stage.isActive(parameters)) continue;
        if (joinPass(stage, picture, parameters, pass)) {
            passEffort += stage.effort;
            continue;
        }
        runPass();
        if (platform::isCancelled()) return;
        const platform::ProgressPart part = efforts.next(stage.effort);
        stage.run(image, parameters);
    }
    runPass();
}

}  // namespace

void runSpatialStages(CxImage& image, const _AdjustParam& parameters) {
    Efforts efforts(parameters, Wing::spatial);
    for (const Stage& stage : stages) {
        if (stage.wing != Wing::spatial || !stage.isActive(parameters)) continue;
        if (platform::isCancelled()) return;
        const platform::ProgressPart part = efforts.next(stage.effort);
        stage.run(&image, parameters);
    }
}

bool leavesPicturesAlone(const _AdjustParam& parameters) noexcept {
    return std::none_of(stages.begin(), stages.end(),
                        [&](const Stage& stage) { return stage.isActive(parameters); });
}

bool rowsStandAlone(CxImage& image, const _AdjustParam& parameters) noexcept {
    const std::optional<Picture> picture = pictureOf(&image);
    if (!picture) return true;
    std::array<KernelPointer, stages.size()> made;
    std::array<const PixelKernel*, stages.size()> kernels;
    std::size_t count = 0;
    try {
        for (const Stage& stage : stages) {
            if (!stage.isActive(parameters)) continue;
            if (!canShareAPass(stage, *picture)) return false;
            made[count] = stage.forms.pixels(*picture, stage.slots(parameters));
            kernels[count] = made[count].get();
            if (kernels[count]->looksAtPlace()) return false;
            ++count;
        }
    } catch (const std::bad_alloc&) {
        return false;
    }
    return !ColourMemory::pays({kernels.data(), count});
}

CxImage* runCpuPipeline(CxImage* image, const _AdjustParam& parameters) noexcept {
    return exportedForm(image,
                        [&](const Picture& picture) { runStages(image, picture, parameters); });
}

}  // namespace keladjust
