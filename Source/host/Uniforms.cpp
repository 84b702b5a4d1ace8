#include "host/Uniforms.h"

#include <algorithm>

#include "filters/Stages.h"

namespace keladjust {

namespace {

template <class Number>
std::vector<Uniform<Number>> uniformsOf(Program program, const _AdjustParam& record, bool integer) {
    std::vector<Uniform<Number>> uniforms;
    for (int slot = 0; slot < slotCount; ++slot) {
        const CataloguedSlot& catalogued = cataloguedSlots[static_cast<std::size_t>(slot)];
        const Setting& setting = *catalogued.setting;
        if (catalogued.stage->program != program || setting.isInteger != integer) continue;
        uniforms.push_back({setting.uniform.c_str(), readSlot<Number>(record, slot)});
    }
    return uniforms;
}

}  // namespace

std::vector<Uniform<std::int32_t>> integerUniforms(Program program, const _AdjustParam& record) {
    return uniformsOf<std::int32_t>(program, record, true);
}

std::vector<Uniform<float>> floatUniforms(Program program, const _AdjustParam& record) {
    return uniformsOf<float>(program, record, false);
}

bool startsProgram(Program program, const _AdjustParam& record) {
    return std::any_of(stages.begin(), stages.end(), [&](const Stage& stage) {
        return stage.program == program && stage.wing != Wing::spatial && stage.isActive(record);
    });
}

}  // namespace keladjust
