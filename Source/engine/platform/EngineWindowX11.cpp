#include <GL/glx.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <X11/Xlib.h>

#include <atomic>
#include <cstddef>
#include <new>

#include "engine/platform/EngineWindow.h"
#include "platform/ModuleReference.h"

namespace keladjust::platform {

namespace {

// The engine's connections to the display server, one for windows and one for OpenGL, while its
// window is open; and what a broken connection led to before.
std::atomic<Display*> windowDisplay{nullptr};
std::atomic<Display*> openGlDisplay{nullptr};
std::atomic<XIOErrorHandler> previousHandler{nullptr};
bool isWindowOpen = false;

// A server that ends takes its clients along, unless they say that they live on. The library must
// not end the host because its own connection has broken; the host's connections are its own.
int onBrokenConnection(Display* display) {
    if (display == windowDisplay || display == openGlDisplay) return 0;
    // Another library that had saved this handler may call it for its own, which it had saved.
    static thread_local bool passingOn = false;
    const XIOErrorHandler previous = previousHandler;
    if (passingOn || previous == nullptr) return 0;
    passingOn = true;
    const int answer = previous(display);
    passingOn = false;
    return answer;
}

// Keeps the code of the handler loaded to the end of the process: whoever has saved it may put it
// back, or call it, at any time.
void keepHandlerLoaded() {
    // Not from the heap, where it would count as lost: nobody points to it.
    alignas(ModuleReference) static std::byte place[sizeof(ModuleReference)];
    static const auto* const kept = new (place) ModuleReference;
    static_cast<void>(kept);
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
    const XIOErrorHandler installed = XSetIOErrorHandler(onBrokenConnection);
    // It is its own where another library has put it back.
    if (installed != onBrokenConnection) previousHandler = installed;
    isWindowOpen = true;
    return window;
}

void engineWindowClosed() {
    if (!isWindowOpen) return;
    isWindowOpen = false;
    const XIOErrorHandler installed = XSetIOErrorHandler(previousHandler);
    if (installed != onBrokenConnection) {
        // Somebody else's by now: it stays.
        XSetIOErrorHandler(installed);
        keepHandlerLoaded();
    }
    windowDisplay = nullptr;
    openGlDisplay = nullptr;
}

void hideEngineWindow(Ogre::RenderWindow&) {
    // It has never been mapped.
}

}  // namespace keladjust::platform
