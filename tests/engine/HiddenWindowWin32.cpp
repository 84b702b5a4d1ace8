// The engine's window on a Windows desktop: nobody sees it, and it is a good neighbour.

#include <windows.h>
#include <OgreRenderWindow.h>
#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <thread>

#include "engine/KelOgreBase.h"
#include "engine/RunningEngine.h"

namespace {

// What a system gives a window before it takes it for hung is a few seconds; a busy machine gets
// more.
constexpr UINT patience = 60'000;

class HiddenWindow : public keladjust::test::RunningEngine {
protected:
    void SetUp() override {
        RunningEngine::SetUp();
        thread->engine()->renderWindow()->getCustomAttribute("WINDOW", &handle);
        ASSERT_NE(handle, nullptr);
    }
    bool answers(UINT message, DWORD_PTR& answer) const {
        return SendMessageTimeoutA(handle, message, 0, 0, SMTO_NORMAL, patience, &answer) != 0;
    }

    HWND handle = nullptr;
};

TEST_F(HiddenWindow, IsLayeredAndKeepsItsSize) {
    const LONG style = GetWindowLongA(handle, GWL_EXSTYLE);
    EXPECT_NE(style & WS_EX_LAYERED, 0);
    // Not in the task bar, nor among the windows that a user switches between.
    EXPECT_NE(style & WS_EX_TOOLWINDOW, 0);
    EXPECT_EQ(style & WS_EX_APPWINDOW, 0);
    EXPECT_NE(style & WS_EX_NOACTIVATE, 0);
    RECT place{};
    ASSERT_TRUE(GetWindowRect(handle, &place));
    EXPECT_GE(place.right - place.left, 640);
    EXPECT_GE(place.bottom - place.top, 480);
}

TEST_F(HiddenWindow, AnswersWhileTheEngineWaits) {
    DWORD_PTR answer = 0;
    ASSERT_TRUE(answers(WM_NULL, answer));
    // As a host does that looks for a window by its title, in all there are.
    ASSERT_TRUE(answers(WM_GETTEXTLENGTH, answer));
    char title[64] = "";
    GetWindowTextA(handle, title, sizeof title);
    EXPECT_STREQ(title, "Kel Ogre Render Window");
    EXPECT_FALSE(IsHungAppWindow(handle));
}

TEST_F(HiddenWindow, DoesNotCloseOnRequest) {
    DWORD_PTR answer = 1;
    ASSERT_TRUE(answers(WM_CLOSE, answer));
    EXPECT_EQ(answer, 0u);
    // As by its menu, and by what ends tasks.
    ASSERT_TRUE(PostMessageA(handle, WM_SYSCOMMAND, SC_CLOSE, 0));
    ASSERT_TRUE(PostMessageA(handle, WM_CLOSE, 0, 0));
    ASSERT_TRUE(answers(WM_NULL, answer));
    EXPECT_TRUE(IsWindow(handle));
    EXPECT_FALSE(thread->engine()->renderWindow()->isClosed());
    onThread([] {});
    EXPECT_TRUE(thread->isEngineInitialised());
}

TEST_F(HiddenWindow, IsNotActivatedByAClick) {
    DWORD_PTR answer = 0;
    ASSERT_TRUE(answers(WM_MOUSEACTIVATE, answer));
    EXPECT_EQ(answer, static_cast<DWORD_PTR>(MA_NOACTIVATE));
}

// A host's window has the foreground and the keyboard, before and after.
TEST(HostWindow, KeepsTheForegroundAndTheKeyboard) {
    const HWND host = CreateWindowExA(0, "EDIT", "host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10,
                                      200, 100, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(host, nullptr);
    SetForegroundWindow(host);
    SetFocus(host);
    ASSERT_EQ(GetForegroundWindow(), host);
    ASSERT_EQ(GetFocus(), host);
    ASSERT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));
    EXPECT_EQ(GetForegroundWindow(), host);
    EXPECT_EQ(GetFocus(), host);
    releaseOgre();
    EXPECT_EQ(GetForegroundWindow(), host);
    EXPECT_EQ(GetFocus(), host);
    DestroyWindow(host);
}

}  // namespace
