// The engine's start and stop as a host sees them: files that are missing or broken, what the log
// says, and start after start in one process.

#include <OgreRenderSystem.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <gtest/gtest.h>
#include <keladjust/CxImage.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "engine/EffectFactory.h"
#include "engine/HookEffect.h"
#include "engine/KelOgreBase.h"
#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/LogCapture.h"
#include "engine/OgreEngine.h"
#include "engine/RenderSystemOptions.h"
#include "host/LibraryState.h"
#include "support/Growth.h"
#include "support/Holdings.h"
#include "support/HostPicture.h"
#include "support/StageSettings.h"

namespace {

namespace fs = std::filesystem;
using DYN_CLASS::CFactoryManager;
using keladjust::libraryState;
using keladjust::OgreEngine;
using keladjust::test::growth;
using keladjust::test::Holdings;
using keladjust::test::HookEffect;
using keladjust::test::HookFactory;
using keladjust::test::HostPicture;
using keladjust::test::identity;
using keladjust::test::LogCapture;
using keladjust::test::someSettings;

constexpr const char* config = KELADJUST_ENGINE_CONFIG;

std::string contentsOf(const fs::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A folder for the engine's files, current while the test runs.
class Start : public testing::Test {
protected:
    Start() : before(fs::current_path()) {
        folder = fs::temp_directory_path() / ("keladjust-start-" + std::to_string(getpid()));
        fs::create_directories(folder);
        fs::current_path(folder);
        setLogPath(nullptr);
    }
    ~Start() override {
        releaseOgre();
        fs::current_path(before);
        fs::remove_all(folder);
    }

    std::string log() const { return contentsOf(folder / "Ogre.log"); }
    void write(const char* name, const std::string& text) const {
        std::ofstream(folder / name) << text;
    }
    void writePlugins(const std::string& text = {}) const {
        write("plugins.cfg", text.empty() ? contentsOf(std::string(config) + "plugins.cfg") : text);
    }

    /// Whichever way the start went: adjustments work, and so does stopping.
    static void expectWholeLibrary() {
        HostPicture picture(61, 47, 32, IMAGE_FORMAT_BGRA);
        const auto original = picture.fillRandom(1).bytes();
        EXPECT_EQ(doAdjust(picture.image(), identity), picture.image());
        EXPECT_EQ(picture.bytes(), original);
        EXPECT_EQ(doAdjust(picture.image(), someSettings()), picture.image());
        EXPECT_NE(picture.bytes(), original);
        EXPECT_TRUE(picture.guardsIntact());
        EXPECT_NE(getLut3dData(identity), nullptr);
        releaseOgre();
        EXPECT_EQ(doAdjust(picture.image(), someSettings()), picture.image());
    }

    fs::path before;
    fs::path folder;
};

TEST_F(Start, ComesUpAndTakesTheGpuPath) {
    ASSERT_TRUE(initOgreRunTime(config, config)) << log();
    EXPECT_TRUE(libraryState().gpu.canAdjust());
    for (const auto number : {keladjust::basicAdjustEffect, keladjust::rangeEffect,
                              keladjust::lensEffect, keladjust::combinedEffect}) {
        const KelOgreEffectBase* effect = OgreEngine::instance().effect(number);
        ASSERT_NE(effect, nullptr);
        EXPECT_TRUE(effect->hasMaterial()) << "programs are compiled at the start";
    }
    EXPECT_NE(log().find("GL version is: "), std::string::npos);
    expectWholeLibrary();
    EXPECT_FALSE(libraryState().gpu.isRunning());
    EXPECT_NE(log().find("Delete all effect!"), std::string::npos);
}

TEST_F(Start, WritesItsLogUnderThePrefix) {
    setLogPath("run1_");
    ASSERT_TRUE(initOgreRunTime(config, config));
    // Too late for this run.
    setLogPath("run2_");
    releaseOgre();
    EXPECT_TRUE(fs::exists("run1_Ogre.log"));
    EXPECT_FALSE(fs::exists("run2_Ogre.log"));
    EXPECT_FALSE(fs::exists("Ogre.log"));
}

TEST_F(Start, NeedsNoFolderForItsLog) {
    setLogPath("no/such/folder/");
    EXPECT_TRUE(initOgreRunTime(config, config));
    expectWholeLibrary();
}

TEST_F(Start, SkipsOptionsThatAreNotOfferedAndSaysSo) {
    ASSERT_TRUE(initOgreRunTime(config, config));
    const auto& offered = Ogre::Root::getSingleton().getRenderSystem()->getConfigOptions();
    for (const auto& [name, value] : keladjust::renderSystemOptions(0, 640, 480)) {
        const std::string line = "Option not offered by the render system: " + name + '\n';
        EXPECT_EQ(log().find(line) == std::string::npos, offered.count(name) == 1) << name;
    }
    EXPECT_NE(log().find("ogre.cfg file not found, automatic config loading disabled."),
              std::string::npos);
}

TEST_F(Start, TwiceIsOnce) {
    ASSERT_TRUE(initOgreRunTime(config, config));
    const KelOgreRenderThread* thread = OgreEngine::instance().thread();
    EXPECT_TRUE(initOgreRunTime("nowhere/", "nowhere/"));
    EXPECT_EQ(OgreEngine::instance().thread(), thread);
    expectWholeLibrary();
}

TEST_F(Start, MayBeTriedAgain) {
    EXPECT_FALSE(initOgreRunTime("nowhere/", "nowhere/"));
    EXPECT_TRUE(libraryState().cpuOnly);
    EXPECT_TRUE(initOgreRunTime(config, config));
    EXPECT_FALSE(libraryState().cpuOnly);
    expectWholeLibrary();
}

TEST_F(Start, ReadsTheTwoFilesUnderPrefixesOfTheirOwn) {
    fs::create_directories("plugins");
    fs::copy(std::string(config) + "plugins.cfg", "plugins/plugins.cfg");
    write("my-resources.cfg", "[General]\nFileSystem=" + folder.string() + "\n");
    ASSERT_TRUE(initOgreRunTime("my-", "plugins/")) << log();
    EXPECT_NE(log().find("Added resource location '" + folder.string() + "'"), std::string::npos);
}

TEST_F(Start, WithoutPluginsFile) {
    write("resources.cfg", "");
    EXPECT_FALSE(initOgreRunTime(nullptr, nullptr));
    EXPECT_NE(log().find("Initialze Ogre failed!"), std::string::npos);
    EXPECT_NE(log().find("plugins.cfg not found"), std::string::npos);
    expectWholeLibrary();
}

TEST_F(Start, WithoutResourcesFile) {
    writePlugins();
    EXPECT_TRUE(initOgreRunTime(nullptr, nullptr));
    EXPECT_NE(log().find("resources.cfg not found, automatic resource loading disabled."),
              std::string::npos);
    expectWholeLibrary();
}

TEST_F(Start, WithTheWrongPluginFolder) {
    writePlugins("PluginFolder=/no/such/folder\nPlugin=RenderSystem_GL\n");
    EXPECT_FALSE(initOgreRunTime(nullptr, nullptr));
    EXPECT_NE(log().find("Plugin not loaded"), std::string::npos);
    EXPECT_NE(log().find("Initialze Ogre failed!"), std::string::npos);
    expectWholeLibrary();
}

TEST_F(Start, WithAPluginThatIsNone) {
    std::string text = contentsOf(std::string(config) + "plugins.cfg");
    writePlugins(text + "Plugin=NoSuchPlugin\n");
    EXPECT_TRUE(initOgreRunTime(nullptr, nullptr)) << log();
    EXPECT_NE(log().find("Plugin not loaded"), std::string::npos);
    expectWholeLibrary();
}

TEST_F(Start, WithAPluginsFileThatNamesNoRenderSystem) {
    std::string text = contentsOf(std::string(config) + "plugins.cfg");
    text.erase(text.find("Plugin=RenderSystem_GL"), std::string("Plugin=RenderSystem_GL").size());
    writePlugins(text);
    EXPECT_TRUE(initOgreRunTime(nullptr, nullptr)) << log();
    expectWholeLibrary();
}

TEST_F(Start, WithoutEffectsToBeMade) {
    CFactoryManager* const head = std::exchange(CFactoryManager::head, nullptr);
    EXPECT_TRUE(initOgreRunTime(config, config));
    CFactoryManager::head = head;
    EXPECT_FALSE(libraryState().gpu.canAdjust());
    EXPECT_NE(log().find("Effects are missing, adjustments run on the CPU"), std::string::npos);
    expectWholeLibrary();
}

TEST_F(Start, WithFilesOfRubbish) {
    std::string rubbish;
    for (int i = 0; i < 5000; ++i) rubbish += static_cast<char>(i * 7919 >> 3);
    write("plugins.cfg", rubbish);
    write("resources.cfg", rubbish);
    write("ogre.cfg", rubbish);
    EXPECT_FALSE(initOgreRunTime(nullptr, nullptr));
    expectWholeLibrary();

    writePlugins();
    write("resources.cfg",
          "[General]\nNoSuchType=somewhere\nZip=none.zip\nFileSystem=/none\n=\n[]\na");
    EXPECT_TRUE(initOgreRunTime(nullptr, nullptr)) << log();
    EXPECT_NE(log().find("Resource location not added"), std::string::npos);
    expectWholeLibrary();
}

TEST_F(Start, WithAConfigurationOfAnotherProgram) {
    write("ogre.cfg",
          "Render System=OpenGL Rendering Subsystem\n\n[OpenGL Rendering Subsystem]\n"
          "Full Screen=Yes\nVideo Mode=1 x 1\nNo Such Option=Yes\n");
    EXPECT_TRUE(initOgreRunTime(config, config)) << log();
    expectWholeLibrary();
}

TEST_F(Start, ReleaseWithoutStart) {
    releaseOgre();
    releaseOgre();
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    EXPECT_EQ(doAdjust(picture.image(), someSettings()), picture.image());
}

TEST_F(Start, BesideAnEngineOfTheHosts) {
    {
        Ogre::LogManager hostsLog;
        hostsLog.createLog("host.log", true, false);
        Ogre::Root hosts("", "", "");
        EXPECT_FALSE(initOgreRunTime(config, config));
        EXPECT_EQ(Ogre::Root::getSingletonPtr(), &hosts);
        releaseOgre();
        EXPECT_EQ(Ogre::Root::getSingletonPtr(), &hosts);
    }
    EXPECT_NE(contentsOf("host.log").find("The host runs an engine of its own"), std::string::npos);
    EXPECT_TRUE(initOgreRunTime(config, config));
}

TEST_F(Start, KeepsQuietOnStandardOutput) {
    testing::internal::CaptureStdout();
    EXPECT_TRUE(initOgreRunTime(config, config));
    HostPicture picture(8, 8, 32, IMAGE_FORMAT_BGRA);
    doAdjust(picture.image(), someSettings());
    releaseCxImage(createCxImageFromFile("none.png"));
    releaseOgre();
    EXPECT_FALSE(initOgreRunTime("none/", "none/"));
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(Start, TwoHostThreadsAtOnceGiveWhatOneGives) {
    ASSERT_TRUE(initOgreRunTime(config, config));
    HostPicture picture(300, 200, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(3);
    std::vector<_AdjustParam> settings(2, someSettings());
    settings[1].exposure = -20;
    settings[1].vignetteAmount = -40;
    std::vector<HostPicture> expected(2, picture);
    for (int i = 0; i < 2; ++i) doAdjust(expected[i].image(), settings[i]);
    std::thread hosts[2];
    for (int i = 0; i < 2; ++i) {
        hosts[i] = std::thread([&, i] {
            for (int j = 0; j < 10; ++j) {
                HostPicture each(picture);
                doAdjust(each.image(), settings[i]);
                EXPECT_EQ(each.bytes(), expected[i].bytes());
            }
        });
    }
    for (std::thread& host : hosts) host.join();
}

TEST_F(Start, ReleaseWaitsForAdjustmentsAndEndsThemAll) {
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(initOgreRunTime(config, config));
        std::atomic<bool> end{false};
        std::thread host([&] {
            HostPicture picture(64, 48, 32, IMAGE_FORMAT_BGRA);
            while (!end) {
                picture.fillRandom(5);
                doAdjust(picture.image(), someSettings());
                releaseCxImage(createCxImageFromFile("none.png"));
            }
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        releaseOgre();
        EXPECT_FALSE(libraryState().gpu.isRunning());
        end = true;
        host.join();
    }
}

TEST_F(Start, FallsBackToTheCpuOnceTheWindowIsClosed) {
    ASSERT_TRUE(initOgreRunTime(config, config));
    HostPicture picture(20, 10, 32, IMAGE_FORMAT_BGRA);
    const auto original = picture.fillRandom(6).bytes();
    {
        // On the render thread, since a window belongs to the thread that has opened it.
        const HookFactory hooks;
        KelOgreRenderThread* const thread = OgreEngine::instance().thread();
        auto* const hook = static_cast<HookEffect*>(thread->createEffect("HookEffect"));
        ASSERT_NE(hook, nullptr);
        hook->onProcess = [thread](auto...) { thread->engine()->renderWindow()->destroy(); };
        EXPECT_EQ(thread->render(hook, nullptr, nullptr, 4, nullptr, 20), 1);
    }
    _AdjustParam settings = identity;
    settings.exposure = 30;
    doAdjust(picture.image(), settings);
    EXPECT_EQ(picture.bytes(), original);
    EXPECT_NE(log().find("window had been closed!"), std::string::npos);

    HostPicture expected(picture);
    exposureAdjustment(expected.image(), 30);
    doAdjust(picture.image(), settings);
    EXPECT_EQ(picture.bytes(), expected.bytes());
    EXPECT_TRUE(initOgreRunTime(config, config));
    EXPECT_TRUE(libraryState().gpu.canAdjust());
}

TEST_F(Start, KnowsWhatTheDriverCanDo) {
    LogCapture capture;
    KelOgreRenderThread thread(config, config, nullptr, 0);
    ASSERT_TRUE(thread.isEngineInitialised()) << capture.all();
    EXPECT_GE(KelOgreBase::maximumTextureSize(), 2048u);
    EXPECT_TRUE(thread.engine()->isPixelBufferCapable());
    EXPECT_TRUE(thread.engine()->hasVolumeTextures());
    EXPECT_TRUE(thread.engine()->isWindowHidden());
    EXPECT_TRUE(thread.engine()->hasSetupSucceeded());
    EXPECT_EQ(thread.engine()->renderWindow()->getName(), "Kel Ogre Render Window");
    EXPECT_EQ(thread.engine()->renderWindow()->getWidth(), 640u);
    EXPECT_EQ(thread.engine()->renderWindow()->getHeight(), 480u);
}

TEST_F(Start, AnyOtherKindIsSetUpAsOpenGlAndThenTakenForDirect3D) {
    LogCapture capture;
    KelOgreRenderThread thread(config, config, nullptr, 2);
    ASSERT_TRUE(thread.isEngineInitialised()) << capture.all();
    EXPECT_EQ(thread.engine()->renderWindow()->getName(), "Kel DX9 Render Window");
    EXPECT_EQ(KelOgreBase::maximumTextureSize(), 16384u);
}

TEST_F(Start, Direct3DNeedsItsOwnRenderSystem) {
    LogCapture capture;
    const KelOgreRenderThread thread(config, config, nullptr, 1);
    EXPECT_FALSE(thread.isEngineInitialised());
    EXPECT_TRUE(capture.has("RenderSystem_Direct3D9"));
}

TEST_F(Start, TwentyFiveCyclesLeaveNothingBehind) {
    HostPicture picture(640, 427, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(7);
    HostPicture expected(picture);
    std::vector<long> kilobytes;
    std::vector<long> threads;
    std::vector<long> handles;
    constexpr int warmUp = 5;
    for (int cycle = 0; cycle < 25 + warmUp; ++cycle) {
        ASSERT_TRUE(initOgreRunTime(config, config)) << cycle << '\n' << log();
        HostPicture each(picture);
        doAdjust(each.image(), someSettings());
        if (cycle == 0) doAdjust(expected.image(), someSettings());
        EXPECT_EQ(each.bytes(), expected.bytes()) << cycle;
        releaseOgre();
        const Holdings now = keladjust::test::holdingsNow();
        if (cycle < warmUp) continue;
        threads.push_back(now.threads);
        kilobytes.push_back(now.residentKilobytes);
        handles.push_back(now.handles);
    }
    std::printf("a cycle adds %.1f kB, %.2f handles\n", growth(kilobytes), growth(handles));
    // What each cycle left behind would be one at least.
    EXPECT_LT(growth(handles), 1.0);
    EXPECT_LT(growth(threads), 1.0);
    // A picture that stayed each time is 1068 kB a cycle; the heap breathes by some megabytes,
    // which are a tenth of that when spread over 25.
    EXPECT_LT(growth(kilobytes), 250.0);
}

}  // namespace
