#ifndef KELADJUST_FUZZ_SUPPORT_STAGEMODELS_H
#define KELADJUST_FUZZ_SUPPORT_STAGEMODELS_H

#include <keladjust/CxImage.h>

#include <cstddef>
#include <span>

#include "filters/Stage.h"
#include "models/Scalars.h"

namespace keladjust::fuzz {

/// A stage by its formula, for whatever its slots hold.
struct StageModel {
    void (*picture)(CxImage& image, const StageSlots& slots);
    /// Of a stage that has a part in colour tables: its formula, and the exported function.
    test::Floats (*colour)(test::Floats colour, const StageSlots& slots) = nullptr;
    float* (*table)(float* lut, unsigned long count, int stride, const StageSlots& slots) = nullptr;
};

/// The model of a stage of the catalogue. Where a stage has none, the first call ends the program.
const StageModel& modelOf(const Stage& stage);

/// What has no row in the catalogue: stages that are called by themselves, and building blocks.
struct LooseStage {
    const char* name;
    std::size_t settingCount;
    CxImage* (*picture)(CxImage* image, const StageSlots& slots);
    void (*model)(CxImage& image, const StageSlots& slots);
};
std::span<const LooseStage> looseStages();

/// The same for colour tables.
struct LooseTableStage {
    const char* name;
    std::size_t settingCount;
    float* (*table)(float* lut, unsigned long count, int stride, const StageSlots& slots);
    test::Floats (*model)(test::Floats colour, const StageSlots& slots);
};
std::span<const LooseTableStage> looseTableStages();

}  // namespace keladjust::fuzz

#endif
