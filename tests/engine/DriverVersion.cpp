// The path that is taken with the driver that MESA_GL_VERSION_OVERRIDE asks for; the build runs
// this once for each version that decides something.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "engine/KelOgreEffectBase.h"
#include "engine/OgreEngine.h"
#include "host/LibraryState.h"
#include "host/Pipeline.h"
#include "support/HostPicture.h"

namespace {

namespace fs = std::filesystem;
using keladjust::libraryState;
using keladjust::test::HostPicture;

constexpr const char* tooLow =
    "GL version is too low, Program requires OpenGL 2.0 or higherra."
    " Please upgrade the driver of your video card!";
constexpr const char* onTheCpu = "Using C algorithm to running!";

std::string contentsOf(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(DriverVersion, DecidesThePath) {
    const char* asked = std::getenv("MESA_GL_VERSION_OVERRIDE");
    ASSERT_NE(asked, nullptr);
    const std::string version = std::string(asked).substr(0, 3);  // without what it may end in
    const std::string prefix =
        (fs::temp_directory_path() / ("keladjust-version-" + std::to_string(getpid()))).string();
    setLogPath(prefix.c_str());
    ASSERT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));

    const bool gpu = version >= "3.2";
    EXPECT_EQ(libraryState().cpuOnly, !gpu);
    EXPECT_TRUE(libraryState().gpu.canAdjust());
    EXPECT_STREQ(libraryState().whyNotOnGpu.text, gpu ? "" : version < "3" ? tooLow : onTheCpu);
    // What renders here is Mesa's software driver.
    keladjust::EngineDriver driver{};
    ASSERT_TRUE(libraryState().gpu.file.module->readDriver(driver));
    EXPECT_EQ(std::to_string(driver.major) + '.' + std::to_string(driver.minor), version);
    EXPECT_FALSE(driver.isHardware);
    // Asking once more changes nothing.
    EXPECT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));
    EXPECT_EQ(libraryState().cpuOnly, !gpu);

    // Where the paths differ in bytes, the picture tells which one it took.
    _AdjustParam settings{};
    settings.temperature = 8000;
    settings.shadows = 40;
    settings.range[KELADJUST_RANGE_RED] = {330, 30, 10, 20, -10};
    HostPicture picture(64, 48, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(1);
    HostPicture expected(picture);
    keladjust::runCpuPipeline(expected.image(), settings);
    doAdjust(picture.image(), settings);
    EXPECT_EQ(picture.bytes() == expected.bytes(), !gpu);

    // The programs are of a level that every one of these drivers compiles.
    for (const auto number : {keladjust::basicAdjustEffect, keladjust::rangeEffect,
                              keladjust::lensEffect, keladjust::combinedEffect}) {
        const KelOgreEffectBase* effect = keladjust::OgreEngine::instance().effect(number);
        ASSERT_NE(effect, nullptr);
        EXPECT_TRUE(effect->hasMaterial());
    }
    releaseOgre();

    const std::string log = contentsOf(prefix + "Ogre.log");
    const auto has = [&log](const std::string& text) {
        return log.find(text) != std::string::npos;
    };
    EXPECT_TRUE(has("GL version is: " + version + ".0.0")) << log;
    EXPECT_EQ(has(tooLow), version < "3");
    EXPECT_EQ(has(onTheCpu), version == "3.0" || version == "3.1");
    fs::remove(prefix + "Ogre.log");
}

}  // namespace
