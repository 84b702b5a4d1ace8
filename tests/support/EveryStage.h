#ifndef KELADJUST_TESTS_SUPPORT_EVERYSTAGE_H
#define KELADJUST_TESTS_SUPPORT_EVERYSTAGE_H

#include <keladjust/keladjust.h>

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "filters/Stages.h"
#include "support/StageSettings.h"

/// Records made from the catalogue of stages.
namespace keladjust::test {

/// A stage alone, each of its settings so far up or down its range; what only shapes is at its
/// usual value.
/// @param strength -1..1: the lowest value to the highest, the identity between them
inline _AdjustParam stageAlone(const Stage& stage, float strength = 0.5f) {
    _AdjustParam record = identity;
    for (std::size_t i = 0; i < stage.settings().size(); ++i) {
        const Setting& setting = stage.settings()[i];
        const float end = strength < 0.0f ? setting.lowest : setting.highest;
        const float way = strength < 0.0f ? -strength : strength;
        const float value = setting.identity + way * (end - setting.identity);
        setSlot(record, stage, i, setting.shapesOnly ? setting.usual : value);
    }
    return record;
}

/// The uniforms of stages that have joined behind the first 65 slots.
inline std::vector<std::string> laterUniforms(Program program) {
    std::vector<std::string> names;
    for (const CataloguedSlot& slot : std::span(cataloguedSlots).subspan(65)) {
        if (slot.stage->program == program) names.emplace_back(slot.setting->uniform.c_str());
    }
    return names;
}

}  // namespace keladjust::test

#endif
