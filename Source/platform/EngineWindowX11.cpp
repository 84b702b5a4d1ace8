#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <X11/Xlib.h>

#include "platform/EngineWindow.h"

namespace keladjust::platform {

bool displayAvailable() {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) return false;
    XCloseDisplay(display);
    return true;
}

Ogre::RenderWindow* openEngineWindow(Ogre::Root& root, const std::string& title, unsigned width,
                                     unsigned height) {
    // A window that initialise() opens by itself would flash up before it could be hidden.
    root.initialise(false, title);
    const Ogre::NameValuePairList hidden{{"hidden", "true"}};
    return root.createRenderWindow(title, width, height, false, &hidden);
}

void hideEngineWindow(Ogre::RenderWindow&) {
    // It has never been mapped.
}

}  // namespace keladjust::platform
