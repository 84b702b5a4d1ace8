#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <windows.h>

#include "platform/EngineWindow.h"

namespace keladjust::platform {

bool displayAvailable() {
    return true;
}

Ogre::RenderWindow* openEngineWindow(Ogre::Root& root, const std::string& title, unsigned,
                                     unsigned) {
    // The size is that of the option "Video Mode".
    return root.initialise(true, title);
}

void engineWindowClosed() {}

void hideEngineWindow(Ogre::RenderWindow& window) {
    HWND handle = nullptr;
    window.getCustomAttribute("WINDOW", &handle);
    if (handle == nullptr) return;
    // A layered window without an image of its own is not drawn.
    SetWindowLongA(handle, GWL_EXSTYLE, GetWindowLongA(handle, GWL_EXSTYLE) | WS_EX_LAYERED);
}

}  // namespace keladjust::platform
