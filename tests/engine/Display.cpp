// Displays that are missing, dead or of no use. Each is a test of its own process, because what a
// display does to a process cannot be undone.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>
#include <sys/types.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/HostPicture.h"

namespace {

namespace fs = std::filesystem;
using keladjust::test::HostPicture;

_AdjustParam someSettings() {
    _AdjustParam p{};
    p.temperature = 11500;
    p.exposure = 30;
    p.range[KELADJUST_RANGE_RED] = {330, 30, 10, 20, -10};
    return p;
}

class Display : public testing::Test {
protected:
    Display() {
        prefix = (fs::temp_directory_path() / ("keladjust-display-" + std::to_string(getpid())))
                     .string();
        setLogPath(prefix.c_str());
    }
    ~Display() override {
        releaseOgre();
        fs::remove(prefix + "Ogre.log");
    }
    static bool start() {
        return initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG);
    }
    bool logHas(const std::string& text) const {
        std::ifstream file(prefix + "Ogre.log");
        const std::string log{std::istreambuf_iterator<char>(file), {}};
        return log.find(text) != std::string::npos;
    }
    static void expectAdjustments() {
        HostPicture picture(61, 47, 32, IMAGE_FORMAT_BGRA);
        const auto before = picture.fillRandom(1).bytes();
        EXPECT_EQ(doAdjust(picture.image(), someSettings()), picture.image());
        EXPECT_NE(picture.bytes(), before);
    }

    std::string prefix;
};

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
    EXPECT_FALSE(start());
    expectAdjustments();
}

}  // namespace
