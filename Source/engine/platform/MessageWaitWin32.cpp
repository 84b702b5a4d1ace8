#include <windows.h>

#include "engine/platform/MessageWait.h"

namespace keladjust::platform {

void waitAnsweringMessages(Event& event) {
    const HANDLE handle = event.systemHandle();
    // Anything but a message: the event, or a failure, after which the plain wait is no worse.
    while (MsgWaitForMultipleObjects(1, &handle, FALSE, INFINITE, QS_ALLINPUT) ==
           WAIT_OBJECT_0 + 1) {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }
}

}  // namespace keladjust::platform
