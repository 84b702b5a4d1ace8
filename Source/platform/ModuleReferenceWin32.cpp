#include <windows.h>

#include "platform/ModuleReference.h"

namespace keladjust::platform {

namespace {
const char addressInThisModule = 0;
}  // namespace

ModuleReference::ModuleReference() {
    HMODULE module = nullptr;
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, &addressInThisModule, &module)) {
        module_ = module;
    }
}

ModuleReference::~ModuleReference() {
    if (module_ != nullptr) FreeLibrary(static_cast<HMODULE>(module_));
}

}  // namespace keladjust::platform
