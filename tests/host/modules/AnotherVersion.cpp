// An engine module that belongs to another library than the one that is tested.

#include "engine/EngineModule.h"

#if defined(_WIN32)
extern "C" __declspec(dllexport) const keladjust::EngineModuleEntry* keladjustEngineModule();
#endif

const keladjust::EngineModuleEntry* keladjustEngineModule() {
    static const keladjust::EngineModuleEntry entry{"0.0.0-another", nullptr};
    return &entry;
}
