#include <windows.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>

#include <atomic>

#include "engine/platform/EngineWindow.h"

namespace keladjust::platform {

namespace {

// How the window's class takes messages. There is one engine, and so one window.
std::atomic<WNDPROC> classProcedure{nullptr};

// The window holds the graphics context until the engine stops: nobody's wish closes it, and a
// click does not bring it forward.
LRESULT CALLBACK answer(HWND window, UINT message, WPARAM first, LPARAM second) {
    switch (message) {
        case WM_CLOSE:
            return 0;
        case WM_MOUSEACTIVATE:
            return MA_NOACTIVATE;
        default:
            return CallWindowProcA(classProcedure, window, message, first, second);
    }
}

// Refuses what would take activation or the keyboard from the host.
LRESULT CALLBACK refuse(int code, WPARAM first, LPARAM second) {
    if (code == HCBT_ACTIVATE || code == HCBT_SETFOCUS) return 1;
    return CallNextHookEx(nullptr, code, first, second);
}

/// While it lives, no window of the calling thread is activated or gets the keyboard.
class NoActivation {
public:
    NoActivation()
        : foreground_(GetForegroundWindow()),
          hook_(SetWindowsHookExA(WH_CBT, refuse, nullptr, GetCurrentThreadId())) {}
    ~NoActivation() {
        if (hook_ != nullptr) UnhookWindowsHookEx(hook_);
        // A window that may not be activated can still cost another the foreground.
        if (foreground_ == nullptr) return;
        const HWND now = GetForegroundWindow();
        if (now == nullptr || GetWindowThreadProcessId(now, nullptr) == GetCurrentThreadId()) {
            SetForegroundWindow(foreground_);
        }
    }
    NoActivation(const NoActivation&) = delete;
    NoActivation& operator=(const NoActivation&) = delete;

private:
    HWND foreground_;
    HHOOK hook_;
};

bool setExtendedStyle(HWND window, LONG style) {
    SetLastError(ERROR_SUCCESS);
    return SetWindowLongA(window, GWL_EXSTYLE, style) != 0 || GetLastError() == ERROR_SUCCESS;
}

// Gives a layered window an image of its own in which every pixel is clear: it is not seen, and the
// mouse reaches what lies behind it.
// @return false if it would still be seen
bool makeTransparent(HWND window) {
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
    bool isTransparent = false;
    if (image != nullptr) {
        const HGDIOBJ before = SelectObject(memory, image);
        POINT origin{};
        BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
        isTransparent = UpdateLayeredWindow(window, screen, nullptr, &size, memory, &origin, 0,
                                            &blend, ULW_ALPHA) != FALSE;
        SelectObject(memory, before);
        DeleteObject(image);
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return isTransparent;
}

HWND handleOf(Ogre::RenderWindow& window) {
    HWND handle = nullptr;
    window.getCustomAttribute("WINDOW", &handle);
    return handle;
}

}  // namespace

bool displayAvailable() {
    return true;
}

Ogre::RenderWindow* openEngineWindow(Ogre::Root& root, const std::string& title, unsigned,
                                     unsigned) {
    const NoActivation scope;
    // The size is that of the option "Video Mode".
    Ogre::RenderWindow* const window = root.initialise(true, title);
    if (const HWND handle = handleOf(*window)) {
        classProcedure = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(handle, GWLP_WNDPROC));
        SetWindowLongPtrA(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(answer));
    }
    return window;
}

void engineWindowClosed() {}

void hideEngineWindow(Ogre::RenderWindow& window) {
    const HWND handle = handleOf(window);
    if (handle == nullptr) return;
    const NoActivation scope;
    // The task bar looks at a window as it appears.
    ShowWindow(handle, SW_HIDE);
    const LONG style = GetWindowLongA(handle, GWL_EXSTYLE) & ~WS_EX_APPWINDOW;
    if (setExtendedStyle(handle, style | WS_EX_LAYERED | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE) &&
        makeTransparent(handle)) {
        ShowWindow(handle, SW_SHOWNOACTIVATE);
    }
}

}  // namespace keladjust::platform
