// Pictures from files, as a host gets them, and pictures stored.

#include <OgreImage.h>
#include <OgrePixelFormat.h>
#include <gtest/gtest.h>
#include <keladjust/CxImage.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "engine/HookEffect.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/OgreEngine.h"
#include "host/LibraryState.h"
#include "support/HostName.h"
#include "support/HostPicture.h"

namespace {

namespace fs = std::filesystem;
using keladjust::libraryState;
using keladjust::OgreEngine;

class PictureFiles : public testing::Test {
protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("keladjust-files-" + std::to_string(getpid()));
        fs::create_directories(folder / "sub");
        fs::create_directories(folder / "known");
        std::ofstream(folder / "resources.cfg")
            << "[General]\nFileSystem=" << (folder / "known").string() << '\n';
        before = fs::current_path();
        fs::current_path(folder);
        setLogPath((folder / "").string().c_str());
        ASSERT_TRUE(initOgreRunTime((folder / "").string().c_str(), KELADJUST_ENGINE_CONFIG));
    }
    void TearDown() override {
        releaseOgre();
        fs::current_path(before);
        fs::remove_all(folder);
    }

    /// Tight rows that tell where in the picture a byte stands.
    static std::vector<unsigned char> tightRows(unsigned width, unsigned height, unsigned bytes,
                                                unsigned char seed) {
        std::vector<unsigned char> rows(std::size_t{width} * height * bytes);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i] = static_cast<unsigned char>(i * 37 + seed);
        }
        return rows;
    }
    int store(const fs::path& file, unsigned width, unsigned height, Ogre::PixelFormat format,
              unsigned char seed) {
        const auto rows = tightRows(
            width, height, static_cast<unsigned>(Ogre::PixelUtil::getNumElemBytes(format)), seed);
        return OgreEngine::instance().thread()->storePicture(file.string().c_str(), rows.data(),
                                                             width, height, format);
    }
    void expectPicture(const std::string& name, unsigned width, unsigned height, unsigned bytes,
                       _ImagePixelFormat format, unsigned char seed) {
        CxImage* image = createCxImageFromFile(name.c_str());
        ASSERT_NE(image, nullptr);
        ASSERT_NE(image->GetBits(), nullptr) << name;
        EXPECT_EQ(image->GetWidth(), width);
        EXPECT_EQ(image->GetHeight(), height);
        EXPECT_EQ(image->GetBpp(), bytes * 8);
        EXPECT_EQ(image->getFormat(), format);
        const auto rows = tightRows(width, height, bytes, seed);
        for (unsigned y = 0; y < height; ++y) {
            for (unsigned x = 0; x < width * bytes; ++x) {
                ASSERT_EQ(image->GetBits()[image->GetEffWidth() * y + x],
                          rows[std::size_t{y} * width * bytes + x])
                    << name << " at " << x << ", " << y;
            }
        }
        releaseCxImage(image);
    }
    static void expectNone(const char* name) {
        CxImage* image = createCxImageFromFile(name);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->GetBits(), nullptr);
        EXPECT_EQ(image->GetWidth(), 0u);
        EXPECT_EQ(image->GetHeight(), 0u);
        EXPECT_EQ(image->getFormat(), IMAGE_FORMAT_UNKNOWN);
        releaseCxImage(image);
    }

    fs::path folder;
    fs::path before;
};

TEST_F(PictureFiles, ComeWithTheirFormatAndOddWidths) {
    for (const unsigned width : {1u, 2u, 3u, 5u, 64u, 61u}) {
        const std::string name = "sub/p" + std::to_string(width);
        ASSERT_EQ(store(name + "c.png", width, 3, Ogre::PF_B8G8R8, 1), 1);
        ASSERT_EQ(store(name + "a.png", width, 3, Ogre::PF_A8B8G8R8, 2), 1);
        ASSERT_EQ(store(name + "g.png", width, 3, Ogre::PF_L8, 3), 1);
        expectPicture(name + "c.png", width, 3, 3, IMAGE_FORMAT_RGB, 1);
        expectPicture(name + "a.png", width, 3, 4, IMAGE_FORMAT_RGBA, 2);
        expectPicture(name + "g.png", width, 3, 1, IMAGE_FORMAT_GRAY, 3);
    }
}

// What is neither grey nor colour nor colour with alpha is handed over with its bytes.
TEST_F(PictureFiles, OfAnotherFormatSaySo) {
    ASSERT_EQ(store("greyAlpha.png", 5, 3, Ogre::PF_BYTE_LA, 4), 1);
    expectPicture("greyAlpha.png", 5, 3, 2, IMAGE_FORMAT_UNKNOWN, 4);
}

TEST_F(PictureFiles, OfOneImageGoWithTheNextOne) {
    ASSERT_EQ(store("first.png", 5, 3, Ogre::PF_B8G8R8, 1), 1);
    CxImage* first = createCxImageFromFile("first.png");
    ASSERT_NE(first->GetBits(), nullptr);
    expectNone("none.png");
    // Its pixels have gone; it can still be released.
    releaseCxImage(first);
    expectPicture("first.png", 5, 3, 3, IMAGE_FORMAT_RGB, 1);
}

TEST_F(PictureFiles, AreFoundWhereTheyAreNamed) {
    ASSERT_EQ(store(folder / "sub" / "same.png", 5, 3, Ogre::PF_B8G8R8, 1), 1);
    ASSERT_EQ(store(folder / "known" / "same.png", 5, 3, Ogre::PF_B8G8R8, 2), 1);
    ASSERT_EQ(store(folder / "here.png", 5, 3, Ogre::PF_B8G8R8, 3), 1);
    // The engine looks into the folders of resources.cfg at its start.
    releaseOgre();
    ASSERT_TRUE(initOgreRunTime((folder / "").string().c_str(), KELADJUST_ENGINE_CONFIG));
    for (int i = 0; i < 2; ++i) {
        expectPicture((folder / "sub" / "same.png").string(), 5, 3, 3, IMAGE_FORMAT_RGB, 1);
        expectPicture("sub/same.png", 5, 3, 3, IMAGE_FORMAT_RGB, 1);
        expectPicture("same.png", 5, 3, 3, IMAGE_FORMAT_RGB, 2);  // in a folder of resources.cfg
        expectPicture((folder / "known" / "same.png").string(), 5, 3, 3, IMAGE_FORMAT_RGB, 2);
        expectPicture("here.png", 5, 3, 3, IMAGE_FORMAT_RGB, 3);
    }
}

// Letters that are one byte in the code page of a Windows system and two elsewhere.
TEST_F(PictureFiles, MayHaveAnyLettersOfTheSystem) {
    using keladjust::test::hostName;
    const fs::path dune = fs::path(u8"Wüste") / u8"Düne.png";
    fs::create_directory(dune.parent_path());
    ASSERT_EQ(store("first.png", 5, 3, Ogre::PF_B8G8R8, 1), 1);
    ASSERT_EQ(store("second.png", 7, 2, Ogre::PF_A8B8G8R8, 2), 1);
    fs::rename("first.png", dune);
    fs::rename("second.png", dune.filename());
    expectPicture(hostName(dune), 5, 3, 3, IMAGE_FORMAT_RGB, 1);
    expectPicture(hostName(folder / dune), 5, 3, 3, IMAGE_FORMAT_RGB, 1);
    expectPicture(hostName((folder / dune).make_preferred()), 5, 3, 3, IMAGE_FORMAT_RGB, 1);
    expectPicture(hostName(dune.filename()), 7, 2, 4, IMAGE_FORMAT_RGBA, 2);
    expectNone(hostName(dune.parent_path() / u8"Dünen.png").c_str());
}

TEST_F(PictureFiles, AreReadAnewEachTime) {
    ASSERT_EQ(store("sub/changing.png", 5, 3, Ogre::PF_B8G8R8, 1), 1);
    expectPicture("sub/changing.png", 5, 3, 3, IMAGE_FORMAT_RGB, 1);
    ASSERT_EQ(store("sub/changing.png", 7, 2, Ogre::PF_A8B8G8R8, 2), 1);
    expectPicture("sub/changing.png", 7, 2, 4, IMAGE_FORMAT_RGBA, 2);
}

TEST_F(PictureFiles, ThatCannotBeLoadedAreEmpty) {
    std::ofstream("corrupt.png") << "\x89PNG\r\n\x1a\n and then nothing of the kind";
    std::ofstream("empty.png");
    std::ofstream("text.txt") << "no picture";
    ASSERT_EQ(store("whole.png", 61, 40, Ogre::PF_B8G8R8, 1), 1);
    fs::copy("whole.png", "half.png");
    fs::resize_file("half.png", fs::file_size("whole.png") / 2);
    for (const char* name :
         {"none.png", "sub/none.png", "no/such/folder/none.png", "corrupt.png", "half.png",
          "empty.png", "text.txt", "sub", "sub/", "/", "", ".", ".."}) {
        expectNone(name);
    }
    expectNone(nullptr);
    EXPECT_TRUE(libraryState().gpu.isRunning());
}

// A render that finds its window closed ends the engine and the picture with it, but not while the
// picture is read: the two are commands of one thread.
TEST_F(PictureFiles, AreReadBeforeARenderThatEndsTheEngine) {
    ASSERT_EQ(store("photo.png", 61, 17, Ogre::PF_B8G8R8, 1), 1);
    KelOgreRenderThread& engine = *OgreEngine::instance().thread();
    const keladjust::test::HookFactory hooks;
    auto* const hook = static_cast<keladjust::test::HookEffect*>(engine.createEffect("HookEffect"));
    ASSERT_NE(hook, nullptr);
    hook->onProcess = [hook](auto...) { hook->setStopped(true); };

    std::thread render;
    std::vector<unsigned char> rows;
    EXPECT_EQ(engine.loadPicture("photo.png",
                                 [&](const Ogre::Image& picture) {
                                     render = std::thread([&] {
                                         engine.render(hook, nullptr, nullptr, 4, nullptr, 20);
                                     });
                                     for (int i = 0; i < 100; ++i) std::this_thread::yield();
                                     EXPECT_TRUE(engine.isEngineInitialised());
                                     rows.assign(picture.getData(),
                                                 picture.getData() + picture.getSize());
                                 }),
              1);
    render.join();
    EXPECT_FALSE(engine.isEngineInitialised());
    EXPECT_EQ(rows, tightRows(61, 17, 3, 1));
    EXPECT_EQ(engine.loadPicture("photo.png", [](const Ogre::Image&) { FAIL(); }), 0);
}

TEST_F(PictureFiles, AreAdjustedLikeAnyOther) {
    ASSERT_EQ(store("photo.png", 61, 17, Ogre::PF_B8G8R8, 1), 1);
    CxImage* image = createCxImageFromFile("photo.png");
    keladjust::test::HostPicture copy(61, 17, 24, IMAGE_FORMAT_RGB);
    std::copy_n(image->GetBits(), copy.size(), copy.bits());
    _AdjustParam settings{};
    settings.temperature = 11500;
    settings.exposure = 25;
    settings.sharpen = 30;
    doAdjust(image, settings);
    doAdjust(copy.image(), settings);
    EXPECT_TRUE(std::equal(copy.bits(), copy.bits() + copy.size(), image->GetBits()));
    releaseCxImage(image);
}

TEST_F(PictureFiles, MayBeReplacedInTheirImage) {
    ASSERT_EQ(store("photo.png", 61, 17, Ogre::PF_B8G8R8, 1), 1);
    CxImage* image = createCxImageFromFile("photo.png");
    keladjust::test::HostPicture other(4, 4, 32, IMAGE_FORMAT_BGRA);
    image->Copy(other.image());  // frees the pixels of the file
    EXPECT_EQ(image->GetWidth(), 4u);
    releaseCxImage(image);
    expectPicture("photo.png", 61, 17, 3, IMAGE_FORMAT_RGB, 1);
}

TEST_F(PictureFiles, ThatCannotBeStoredAreNot) {
    EXPECT_EQ(store("no/such/folder/p.png", 2, 2, Ogre::PF_B8G8R8, 1), 0);
    EXPECT_EQ(store("p.nosuchkind", 2, 2, Ogre::PF_B8G8R8, 1), 0);
    EXPECT_EQ(store("p", 2, 2, Ogre::PF_B8G8R8, 1), 0);
    EXPECT_EQ(
        OgreEngine::instance().thread()->storePicture("p.png", nullptr, 2, 2, Ogre::PF_B8G8R8), 0);
    EXPECT_EQ(
        OgreEngine::instance().thread()->storePicture(nullptr, nullptr, 2, 2, Ogre::PF_B8G8R8), 0);
    const unsigned char pixel[4] = {};
    EXPECT_EQ(OgreEngine::instance().thread()->storePicture("p.png", pixel, 0, 0, Ogre::PF_B8G8R8),
              0);
    EXPECT_EQ(OgreEngine::instance().thread()->storePicture("p.png", pixel, 1, 1, Ogre::PF_UNKNOWN),
              0);
    EXPECT_EQ(OgreEngine::instance().thread()->storePicture("p.png", pixel, 1, 1, 0xFFFFFFFF), 0);
    std::ifstream log("Ogre.log");
    std::string text{std::istreambuf_iterator<char>(log), {}};
    EXPECT_NE(text.find("Could not store picture. Maybe something that you specified is wrong."),
              std::string::npos);
}

}  // namespace
