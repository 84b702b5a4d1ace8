// WebAssembly programs are one module, and no engine runs in them.

#include "host/EngineFile.h"

namespace keladjust {

EngineFile openEngineFile(EngineReason& reason) {
    reason.set("there is no engine module for this system");
    return {};
}

void closeEngineFile(EngineFile& file) noexcept {
    file = {};
}

}  // namespace keladjust
