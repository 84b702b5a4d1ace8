#include <dlfcn.h>

#include "platform/ModuleReference.h"

namespace keladjust::platform {

namespace {
const char addressInThisModule = 0;
}  // namespace

ModuleReference::ModuleReference() {
    Dl_info info{};
    if (dladdr(&addressInThisModule, &info) != 0) {
        module_ = dlopen(info.dli_fname, RTLD_NOLOAD | RTLD_LAZY);
    }
}

ModuleReference::~ModuleReference() {
    if (module_ != nullptr) dlclose(module_);
}

}  // namespace keladjust::platform
