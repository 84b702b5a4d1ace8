// What the library says about itself.

#include <keladjust/keladjust.h>

#include <array>
#include <cstddef>

#include "filters/Stages.h"

#define KELADJUST_TEXT_OF(number) #number
#define KELADJUST_VERSION_TEXT(major, minor, patch) \
    KELADJUST_TEXT_OF(major) "." KELADJUST_TEXT_OF(minor) "." KELADJUST_TEXT_OF(patch)

namespace {

using namespace keladjust;

constexpr std::array<KeladjustSetting, slotCount> settings = [] {
    std::array<KeladjustSetting, slotCount> table{};
    for (std::size_t slot = 0; slot < table.size(); ++slot) {
        const CataloguedSlot& from = cataloguedSlots[slot];
        const Setting& setting = *from.setting;
        table[slot] = {setting.name.c_str(),
                       setting.label.c_str(),
                       from.stage->group,
                       setting.help.c_str(),
                       static_cast<std::int32_t>(slot),
                       setting.isInteger ? 1 : 0,
                       setting.identity,
                       setting.lowest,
                       setting.highest,
                       setting.usual};
    }
    return table;
}();

}  // namespace

const char* keladjustVersion() {
    return KELADJUST_VERSION_TEXT(KELADJUST_VERSION_MAJOR, KELADJUST_VERSION_MINOR,
                                  KELADJUST_VERSION_PATCH);
}

const KeladjustSetting* keladjustSettings(int* count) {
    if (count != nullptr) *count = static_cast<int>(settings.size());
    return settings.data();
}
