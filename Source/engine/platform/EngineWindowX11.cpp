#include <GL/glx.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <X11/Xlib.h>

#include <atomic>

#include "engine/platform/EngineWindow.h"

namespace keladjust::platform {

namespace {

// The engine's connections to the display server, one for windows and one for OpenGL, while its
// window is open; and what a broken connection led to before.
std::atomic<Display*> windowDisplay{nullptr};
std::atomic<Display*> openGlDisplay{nullptr};
XIOErrorHandler previousHandler = nullptr;

// A server that ends takes its clients along, unless they say that they live on. The library must
// not end the host because its own connection has broken; the host's connections are its own.
int onBrokenConnection(Display* display) {
    if (display != windowDisplay && display != openGlDisplay) return previousHandler(display);
    return 0;
}

void liveOn(Display*, void*) {}

}  // namespace

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
    Ogre::RenderWindow* window = root.createRenderWindow(title, width, height, false, &hidden);

    Display* display = nullptr;
    window->getCustomAttribute("XDISPLAY", &display);
    windowDisplay = display;
    openGlDisplay = glXGetCurrentDisplay();
    for (Display* each : {windowDisplay.load(), openGlDisplay.load()}) {
        if (each != nullptr) XSetIOErrorExitHandler(each, liveOn, nullptr);
    }
    previousHandler = XSetIOErrorHandler(onBrokenConnection);
    return window;
}

void engineWindowClosed() {
    if (previousHandler == nullptr) return;
    const XIOErrorHandler installed = XSetIOErrorHandler(previousHandler);
    // Somebody else's by now: it stays.
    if (installed != onBrokenConnection) XSetIOErrorHandler(installed);
    previousHandler = nullptr;
    windowDisplay = nullptr;
    openGlDisplay = nullptr;
}

void hideEngineWindow(Ogre::RenderWindow&) {
    // It has never been mapped.
}

}  // namespace keladjust::platform
