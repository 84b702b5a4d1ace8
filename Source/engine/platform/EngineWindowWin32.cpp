#include <windows.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>

#include "engine/platform/EngineWindow.h"

namespace keladjust::platform {

namespace {

// Gives a layered window an image of its own in which every pixel is clear: it is not seen, and the
// mouse reaches what lies behind it.
void makeTransparent(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    SIZE size{place.right - place.left, place.bottom - place.top};

    BITMAPINFO format{};
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = size.cx;
    format.bmiHeader.biHeight = size.cy;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    format.bmiHeader.biCompression = BI_RGB;

    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    void* pixels = nullptr;  // all zero from the start
    const HBITMAP image = CreateDIBSection(memory, &format, DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (image != nullptr) {
        const HGDIOBJ before = SelectObject(memory, image);
        POINT origin{};
        BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
        UpdateLayeredWindow(window, screen, nullptr, &size, memory, &origin, 0, &blend, ULW_ALPHA);
        SelectObject(memory, before);
        DeleteObject(image);
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
}

}  // namespace

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
    SetWindowLongA(handle, GWL_EXSTYLE, GetWindowLongA(handle, GWL_EXSTYLE) | WS_EX_LAYERED);
    makeTransparent(handle);
}

}  // namespace keladjust::platform
