// Adjustments by the engine, and picture files that it reads, short of each allocation that the
// library and OGRE ask for. The driver gets what it asks for, or it would end the process.

#include <dlfcn.h>
#include <keladjust/CxImage.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "allocation/Allocations.h"
#include "engine/OgreEngine.h"
#include "engine/RunningEngine.h"
#include "host/LibraryState.h"
#include "support/HostPicture.h"
#include "support/StageSettings.h"
#include "support/TemporaryFolder.h"

namespace {

using keladjust::libraryState;
using keladjust::test::AllocationFault;
using keladjust::test::HostPicture;
using keladjust::test::identity;
using keladjust::test::liveAllocations;
using keladjust::test::Requester;
using keladjust::test::Shortage;
using keladjust::test::Struck;
using keladjust::test::TemporaryFolder;
using keladjust::test::withEveryFault;
using Bytes = std::vector<std::uint8_t>;

/// Tones and a colour range, each of which is a render.
_AdjustParam settings(bool tones, bool ranges) {
    _AdjustParam p = identity;
    if (tones) p.exposure = 20;
    if (ranges) p.range[KELADJUST_RANGE_BLUE] = {180, 300, 0, 0, 50};
    return p;
}

class EngineShortOfMemory : public testing::Test {
protected:
    EngineShortOfMemory() {
        setLogPath((folder / "").string().c_str());
        picture.fillRandom(3);
    }
    ~EngineShortOfMemory() override { releaseOgre(); }
    void SetUp() override {
        ASSERT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));
        ASSERT_TRUE(libraryState().gpu.canAdjust());
    }
    Bytes adjusted(const _AdjustParam& p) const {
        HostPicture changed(picture);
        doAdjust(changed.image(), p);
        return changed.bytes();
    }

    const TemporaryFolder folder;
    HostPicture picture{19, 11, 24, IMAGE_FORMAT_RGB};
};

TEST_F(EngineShortOfMemory, RendersWhollyOrNot) {
    const Bytes whole = adjusted(settings(true, true));
    // Without one of the renders; without both it is as it was.
    const std::vector<Bytes> parts{adjusted(settings(true, false)), adjusted(settings(false, true)),
                                   picture.bytes()};
    struct Call {
        Call(const HostPicture& source, const Bytes& rendered, const std::vector<Bytes>& partly)
            : picture(source), whole(rendered), parts(partly) {}
        void call() { doAdjust(picture.image(), settings(true, true)); }
        void check(Struck struck) const {
            const auto end = parts.end() - (struck.alone ? 1 : 0);
            const bool allowed = struck && std::find(parts.begin(), end, picture.bytes()) != end;
            EXPECT_TRUE(allowed || picture.bytes() == whole);
            EXPECT_TRUE(picture.guardsIntact());
            EXPECT_TRUE(libraryState().gpu.canAdjust());
        }
        HostPicture picture;
        const Bytes& whole;
        const std::vector<Bytes>& parts;
    };
    withEveryFault(
        "doAdjust", [&] { return Call(picture, whole, parts); }, Requester::program);
}

TEST_F(EngineShortOfMemory, SaysWhetherItRendered) {
    const Bytes whole = adjusted(settings(true, true));
    struct Call {
        Call(const HostPicture& source, const Bytes& rendered)
            : picture(source), before(source.bytes()), whole(rendered) {
            run.size = sizeof run;
            run.path = KELADJUST_GPU;
        }
        void call() {
            const _AdjustParam record = settings(true, true);
            result = keladjustRun(picture.image(), &record, sizeof record, &run);
        }
        void check(Struck struck) const {
            EXPECT_TRUE(struck || result == KELADJUST_DONE) << run.reason;
            EXPECT_EQ(picture.bytes(), result == KELADJUST_DONE ? whole : before) << run.reason;
            EXPECT_EQ(run.reason[0] == '\0', result == KELADJUST_DONE);
            EXPECT_TRUE(picture.guardsIntact());
        }
        HostPicture picture;
        Bytes before;
        const Bytes& whole;
        KeladjustRun run{};
        KeladjustResult result = KELADJUST_DONE;
    };
    withEveryFault(
        "keladjustRun", [&] { return Call(picture, whole); }, Requester::program);
}

TEST_F(EngineShortOfMemory, ReadsPictureFilesWhollyOrNot) {
    const std::string path = (folder / "picture.ppm").string();
    const std::string pixels = "red green blue..";
    std::ofstream(path, std::ios::binary) << "P6\n5 1\n255\n" << pixels.substr(0, 15);
    struct Release {
        void operator()(CxImage* image) const { releaseCxImage(image); }
    };
    struct Call {
        explicit Call(const std::string& file) : path(file) {}
        void call() { image.reset(createCxImageFromFile(path.c_str())); }
        void check(Struck struck) const {
            if (image == nullptr || image->GetBits() == nullptr) {
                EXPECT_TRUE(struck);
                return;
            }
            EXPECT_EQ(image->GetWidth(), 5u);
            EXPECT_EQ(image->GetHeight(), 1u);
        }
        const std::string& path;
        std::unique_ptr<CxImage, Release> image;
    };
    withEveryFault(
        "createCxImageFromFile", [&] { return Call(path); }, Requester::program);
}

/// The engine without the library's interface, with one small program.
class EngineLifeShortOfMemory : public testing::Test {
public:
    bool start(keladjust::OgreEngine& engine) {
        reason = {};
        const char* const programs[] = {keladjust::test::copyProgram};
        return engine.start(
            {KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG, log.c_str(), programs, 1}, reason);
    }

    const TemporaryFolder folder;
    const std::string log = (folder / "").string();
    keladjust::EngineReason reason;
};

// Whatever is short, the engine runs and can be stopped, or nothing of it is there. Without a whole
// start after each, which would take twice as long.
TEST_F(EngineLifeShortOfMemory, StartsOrLeavesNothing) {
    keladjust::OgreEngine engine;
    ASSERT_TRUE(start(engine)) << reason.text;
    engine.stop();
    for (const Shortage shortage : {Shortage::once, Shortage::forGood}) {
        Struck struck{true};
        for (std::size_t allowed = 0; struck; ++allowed) {
            const std::ptrdiff_t before = liveAllocations(Requester::program);
            bool started = false;
            {
                const AllocationFault fault(allowed, shortage, Requester::program);
                started = start(engine);
                struck = AllocationFault::struck();
            }
            EXPECT_TRUE(started || struck);
            EXPECT_EQ(engine.isRunning(), started);
            EXPECT_EQ(reason.text[0] == '\0', started) << reason.text;
            engine.stop();
            // The loader keeps the words for an error until they have been asked for twice.
            dlerror();
            dlerror();
            const std::ptrdiff_t after = liveAllocations(Requester::program);
            EXPECT_EQ(after, before) << "allocations that are not freed";
            ASSERT_FALSE(HasFailure())
                << "short of allocation " << allowed
                << (shortage == Shortage::once ? " alone" : " and all after it");
        }
    }
    EXPECT_TRUE(start(engine)) << reason.text;
    EXPECT_TRUE(engine.hasEffect(0));
    engine.stop();
}

TEST_F(EngineLifeShortOfMemory, StopsAndLeavesNothing) {
    struct Call {
        explicit Call(EngineLifeShortOfMemory& test) : started(test.start(engine)) {}
        void call() { engine.stop(); }
        void check(Struck) const {
            EXPECT_TRUE(started);
            EXPECT_FALSE(engine.isRunning());
        }
        keladjust::OgreEngine engine;
        bool started;
    };
    withEveryFault(
        "OgreEngine::stop", [&] { return Call(*this); }, Requester::program);
}

}  // namespace
