// Where nothing can be loaded there is no engine.

#include "host/EngineFile.h"

namespace keladjust {

EngineFile openEngineFile(EngineReason& reason) {
    reason.set("there is no engine for this system");
    return {};
}

void closeEngineFile(EngineFile&) noexcept {}

}  // namespace keladjust
