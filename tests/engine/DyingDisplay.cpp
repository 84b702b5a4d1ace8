// A display that dies under the running engine.

#include <sys/types.h>

#include <csignal>
#include <cstdlib>

#include "engine/DisplayTest.h"

namespace {

using keladjust::test::Display;
using keladjust::test::HostPicture;
using keladjust::test::someSettings;

// The server ends while the engine runs; what comes out then is a render or the picture as it was.
TEST_F(Display, ThatDies) {
    ASSERT_TRUE(start());
    expectAdjustments();
    HostPicture picture(61, 47, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    doAdjust(picture.image(), someSettings());
    const auto rendered = picture.bytes();

    ASSERT_EQ(kill(static_cast<pid_t>(std::stol(std::getenv("WITH_DISPLAY_SERVER"))), SIGKILL), 0);
    usleep(200'000);
    for (int i = 0; i < 3; ++i) {
        picture.fillRandom(1);
        doAdjust(picture.image(), someSettings());
        EXPECT_TRUE(picture.bytes() == rendered || picture.bytes() == before);
    }
    releaseOgre();
    // Starting again is another test's: by now the display's number may be somebody else's.
    expectAdjustments();
}

}  // namespace
