#include "host/EngineFile.h"

namespace keladjust {

EngineFile openEngineFile(EngineReason&) {
    return {keladjustEngineModule()->module, nullptr};
}

void closeEngineFile(EngineFile& file) noexcept {
    file = {};
}

}  // namespace keladjust
