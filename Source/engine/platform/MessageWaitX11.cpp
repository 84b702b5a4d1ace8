#include "engine/platform/MessageWait.h"

namespace keladjust::platform {

void waitAnsweringMessages(Event& event) {
    event.wait();
}

}  // namespace keladjust::platform
