// Displays that are missing, dead or of no use. Each is a test of its own process, because what a
// display does to a process cannot be undone.

#include "engine/DisplayTest.h"

namespace {

using keladjust::test::Display;

// Run without DISPLAY, and with one that nothing listens on.
TEST_F(Display, Missing) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(start());
        EXPECT_TRUE(logHas("There is no display"));
        EXPECT_TRUE(logHas("Initialze Ogre failed!"));
        expectAdjustments();
    }
}

// Run on a server without OpenGL.
TEST_F(Display, WithoutOpenGl) {
    EXPECT_FALSE(start());
    EXPECT_TRUE(logHas("Initialze Ogre failed!"));
    expectAdjustments();
}

}  // namespace
