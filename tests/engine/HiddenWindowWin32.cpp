// The engine's window on a Windows desktop.

#include <windows.h>
#include <OgreRenderWindow.h>
#include <gtest/gtest.h>

#include "engine/KelOgreBase.h"
#include "engine/RunningEngine.h"

namespace {

class HiddenWindow : public keladjust::test::RunningEngine {};

TEST_F(HiddenWindow, IsLayeredAndKeepsItsSize) {
    HWND handle = nullptr;
    thread->engine()->renderWindow()->getCustomAttribute("WINDOW", &handle);
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(GetWindowLongA(handle, GWL_EXSTYLE) & WS_EX_LAYERED, 0);
    RECT place{};
    ASSERT_TRUE(GetWindowRect(handle, &place));
    EXPECT_GE(place.right - place.left, 640);
    EXPECT_GE(place.bottom - place.top, 480);
}

}  // namespace
