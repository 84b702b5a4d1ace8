// A host that loads the library, whose engine module is missing or is not what it should be: the
// start fails, the log says why, and everything works on the processor. A host that starts no
// engine never has one loaded.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/SharedLibrary.h"
#include "support/LoadedLibraries.h"
#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using keladjust::test::isLoaded;
using keladjust::test::TemporaryFolder;

constexpr const char* engineName = KELADJUST_ENGINE_NAME;

/// A copy of the library in a folder of its own, loaded.
class EngineModule : public testing::Test {
protected:
    ~EngineModule() override { unload(); }

    void load() {
        const fs::path copy = folder / KELADJUST_LIBRARY_NAME;
        fs::copy_file(KELADJUST_LIBRARY, copy, fs::copy_options::overwrite_existing);
        std::string reason;
        library = keladjust::platform::loadSharedLibrary(copy, reason);
        ASSERT_NE(library, nullptr) << reason;
        prefix = (folder / "log-").string();
        call<decltype(setLogPath)>("setLogPath")(prefix.c_str());
    }
    void unload() {
        if (library != nullptr) keladjust::platform::unloadSharedLibrary(library);
        library = nullptr;
    }

    template <class Function>
    Function* call(const char* name) const {
        return reinterpret_cast<Function*>(keladjust::platform::functionOf(library, name));
    }
    bool start() const {
        return call<decltype(initOgreRunTime)>("initOgreRunTime")(prefix.c_str(), prefix.c_str());
    }
    std::string log() const {
        std::ifstream file(prefix + "Ogre.log");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Makes a grey half as bright again.
    void expectAdjustments() const {
        unsigned char pixel[4] = {100, 100, 100, 130};
        unsigned char* bits = pixel;
        CxImage* const image =
            call<decltype(createCxImage)>("createCxImage")(&bits, 1, 1, 32, IMAGE_FORMAT_BGRA);
        ASSERT_NE(image, nullptr);
        _AdjustParam settings{};
        settings.temperature = 11500;
        settings.brightness = 50;
        EXPECT_EQ(call<decltype(doAdjust)>("doAdjust")(image, settings), image);
        const unsigned char expected[4] = {150, 150, 150, 130};
        EXPECT_EQ(std::memcmp(pixel, expected, sizeof pixel), 0);
        call<decltype(releaseCxImage)>("releaseCxImage")(image);
    }

    /// The start fails, twice, with that in the log's one line and nothing on the standard output.
    void expectRefusal(const std::string& reason) {
        load();
        testing::internal::CaptureStdout();
        for (int i = 0; i < 2; ++i) {
            EXPECT_FALSE(start());
            EXPECT_NE(log().find("The engine does not start: "), std::string::npos) << log();
            EXPECT_NE(log().find(reason), std::string::npos) << log();
            EXPECT_FALSE(isLoaded("keladjust-engine"));
            _AdjustParam identity{};
            identity.temperature = 11500;
            const float* table = call<decltype(getLut3dData)>("getLut3dData")(identity);
            ASSERT_NE(table, nullptr);
            EXPECT_EQ(table[3 * 32767], 1.0f) << "the table's last entry is white";
            expectAdjustments();
        }
        call<decltype(releaseOgre)>("releaseOgre")();
        std::fflush(stdout);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        expectAdjustments();
        unload();
        EXPECT_FALSE(isLoaded(KELADJUST_LIBRARY_NAME));
    }

    TemporaryFolder folder;
    std::string prefix;
    void* library = nullptr;
};

TEST_F(EngineModule, IsNotLoadedByAHostThatStartsNone) {
    fs::copy_file(KELADJUST_ANOTHER_VERSION, folder / engineName);
    load();
    expectAdjustments();
    for (const char* name : {"keladjust-engine", "Ogre", "libGL", "libX11", "OPENGL32"}) {
        EXPECT_FALSE(isLoaded(name)) << name;
    }
}

TEST_F(EngineModule, Missing) {
    expectRefusal(engineName);
}

TEST_F(EngineModule, ThatIsAFileOfRubbish) {
    std::ofstream(folder / engineName) << "no library of any system";
    expectRefusal(engineName);
}

TEST_F(EngineModule, ThatIsAnotherLibrary) {
    fs::copy_file(KELADJUST_LIBRARY, folder / engineName);
    expectRefusal("is not the engine module");
}

TEST_F(EngineModule, OfAnotherVersion) {
    fs::copy_file(KELADJUST_ANOTHER_VERSION, folder / engineName);
    expectRefusal("is of version 0.0.0-another, the library of ");
}

TEST_F(EngineModule, WithoutWhatItNeeds) {
    fs::copy_file(KELADJUST_NEEDING, folder / engineName);
    expectRefusal(engineName[0] == 'l' ? "needed_by_an_engine" : engineName);
}

TEST_F(EngineModule, IsNotTakenFromTheCurrentFolder) {
    const TemporaryFolder elsewhere;
    fs::copy_file(KELADJUST_ANOTHER_VERSION, elsewhere / engineName);
    const fs::path before = fs::current_path();
    fs::current_path(elsewhere.path());
    expectRefusal(engineName);
    EXPECT_EQ(log().find("0.0.0-another"), std::string::npos) << log();
    fs::current_path(before);
}

TEST_F(EngineModule, MissingWithoutAFolderForTheLog) {
    load();
    prefix = (folder / "none" / "log-").string();
    call<decltype(setLogPath)>("setLogPath")(prefix.c_str());
    EXPECT_FALSE(start());
    EXPECT_EQ(log(), "");
    expectAdjustments();
}

}  // namespace
