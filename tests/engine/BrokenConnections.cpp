// What happens to a broken connection to the display server is the process's to say, in one place
// that all libraries share: the engine takes it over, and gives it back.

// clang-format off
#include "engine/DisplayTest.h"

#include <X11/Xlib.h>  // whose macros are words that the others use
// clang-format on

namespace {

int hostCalls = 0;
int otherCalls = 0;
XIOErrorHandler savedByOther = nullptr;

int hostsOwn(Display*) {
    return 100 + ++hostCalls;
}
// Another library's, which leaves what it does not know to what it has found.
int anothers(Display* display) {
    ++otherCalls;
    return savedByOther(display);
}

class BrokenConnections : public keladjust::test::Display {
protected:
    BrokenConnections() : before_(XSetIOErrorHandler(hostsOwn)), display_(XOpenDisplay(nullptr)) {
        hostCalls = otherCalls = 0;
    }
    ~BrokenConnections() override {
        releaseOgre();
        XSetIOErrorHandler(before_);
        XCloseDisplay(display_);
    }
    static XIOErrorHandler installed() {
        const XIOErrorHandler handler = XSetIOErrorHandler(hostsOwn);
        XSetIOErrorHandler(handler);
        return handler;
    }
    /// As if a connection of the host's had broken.
    int breakHosts() const { return installed()(display_); }

private:
    XIOErrorHandler before_;
    ::Display* display_;
};

TEST_F(BrokenConnections, OfTheHostAreTheHosts) {
    ASSERT_TRUE(start());
    EXPECT_NE(installed(), hostsOwn);
    EXPECT_EQ(breakHosts(), 101);
    releaseOgre();
    EXPECT_EQ(installed(), hostsOwn);
    EXPECT_EQ(breakHosts(), 102);
}

TEST_F(BrokenConnections, AreTheHostsAfterAnotherLibraryHasPutTheHandlerBack) {
    ASSERT_TRUE(start());
    savedByOther = XSetIOErrorHandler(anothers);
    releaseOgre();
    EXPECT_EQ(installed(), anothers);
    EXPECT_EQ(breakHosts(), 101);
    // Long after the engine has gone.
    XSetIOErrorHandler(savedByOther);
    EXPECT_EQ(breakHosts(), 102);
    ASSERT_TRUE(start());
    EXPECT_EQ(breakHosts(), 103);
    releaseOgre();
    EXPECT_EQ(installed(), hostsOwn);
}

TEST_F(BrokenConnections, DoNotGoRoundBetweenLibraries) {
    ASSERT_TRUE(start());
    savedByOther = XSetIOErrorHandler(anothers);
    releaseOgre();
    // Now either knows the other as what was there before.
    ASSERT_TRUE(start());
    breakHosts();
    EXPECT_EQ(otherCalls, 1);
}

}  // namespace
