// What an adjustment does with an engine that renders, and with one that refuses to. The effects
// here render nothing, so no display is needed.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "engine/EngineModule.h"
#include "host/LibraryState.h"
#include "support/HostPicture.h"
#include "support/StageSettings.h"

namespace {

using keladjust::libraryState;
using keladjust::test::everyStage;
using keladjust::test::HostPicture;
using keladjust::test::identity;

/// An effect that adds one to every byte of the picture, or refuses to.
struct AddingEffect {
    int renders = 0;
    bool refuses = false;
};

/// An engine of such effects.
class AddingEngine final : public keladjust::EngineModule {
public:
    bool start(const keladjust::EngineStart&, keladjust::EngineReason&) noexcept override {
        return true;
    }
    void stop() noexcept override {}
    bool isRunning() const noexcept override { return true; }
    bool hasEffect(std::uint32_t effect) const noexcept override {
        return effect < std::size(effects);
    }
    bool readDriver(keladjust::EngineDriver& driver) const noexcept override {
        driver = {4, 5, 0, 0, isHardware};
        return true;
    }
    bool render(const keladjust::EngineRender& render,
                keladjust::EngineReason& reason) noexcept override {
        AddingEffect& effect = effects[render.effect];
        if (effect.refuses) {
            reason.set("refused");
            return false;
        }
        ++effect.renders;
        const std::size_t rowBytes =
            (std::size_t{render.width} * render.bitsPerPixel + 31) / 32 * 4;
        for (std::size_t i = 0; i < rowBytes * render.height; ++i) ++render.pixels[i];
        return true;
    }
    bool loadPicture(const char*, keladjust::EnginePictureTaker&) noexcept override {
        return false;
    }
    void log(const char*) noexcept override {}

    AddingEffect effects[3];
    bool isHardware = true;
};

class RunOnGpu : public testing::Test {
protected:
    RunOnGpu() {
        releaseOgre();
        auto busy = std::make_shared<keladjust::platform::Event>();
        busy->signal();
        libraryState().cpuOnly = false;
        libraryState().whyNotOnGpu = {};
        libraryState().gpu.file.module = &engine;
        libraryState().setBusyEvent(std::move(busy));
    }
    ~RunOnGpu() override {
        libraryState().setBusyEvent(nullptr);
        libraryState().gpu = {};
    }
    KeladjustResult run(HostPicture& picture, const _AdjustParam& record, int path) {
        wishes = {};
        wishes.size = sizeof wishes;
        wishes.path = path;
        wishes.hardwareOnly = hardwareOnly ? 1 : 0;
        return keladjustRun(picture.image(), &record, sizeof record, &wishes);
    }
    static HostPicture randomPicture() {
        HostPicture picture(40, 30, 32, IMAGE_FORMAT_BGRA);
        picture.fillRandom(3);
        return picture;
    }
    static std::vector<std::uint8_t> onCpu(const HostPicture& picture, const _AdjustParam& record) {
        HostPicture copy(picture);
        EXPECT_EQ(keladjustRun(copy.image(), &record, sizeof record, nullptr), KELADJUST_DONE);
        return copy.bytes();
    }

    AddingEngine engine;
    AddingEffect* const tones = &engine.effects[0];
    AddingEffect* const ranges = &engine.effects[1];
    bool hardwareOnly = false;
    KeladjustRun wishes{};
};

TEST_F(RunOnGpu, DoesWhatDoAdjustDoes) {
    const _AdjustParam record = everyStage().settings;
    HostPicture expected = randomPicture();
    doAdjust(expected.image(), record);
    for (const int path : {KELADJUST_AUTO, KELADJUST_GPU}) {
        tones->renders = ranges->renders = 0;
        HostPicture picture = randomPicture();
        EXPECT_EQ(run(picture, record, path), KELADJUST_DONE);
        EXPECT_EQ(tones->renders + ranges->renders, 2);
        EXPECT_EQ(wishes.pathTaken, KELADJUST_GPU);
        EXPECT_STREQ(wishes.reason, "");
        EXPECT_TRUE(picture.bytes() == expected.bytes());
    }
}

TEST_F(RunOnGpu, LeavesTheEngineAloneOnTheCpu) {
    HostPicture picture = randomPicture();
    EXPECT_EQ(run(picture, everyStage().settings, KELADJUST_CPU), KELADJUST_DONE);
    EXPECT_EQ(tones->renders + ranges->renders, 0);
    EXPECT_EQ(wishes.pathTaken, KELADJUST_CPU);
}

// While another adjustment holds the engine, or what there is of it.
TEST_F(RunOnGpu, WaitsForNobodyOnTheCpu) {
    libraryState().busyEvent()->wait();
    HostPicture picture = randomPicture();
    EXPECT_EQ(run(picture, everyStage().settings, KELADJUST_CPU), KELADJUST_DONE);
    libraryState().cpuOnly = true;
    EXPECT_EQ(run(picture, everyStage().settings, KELADJUST_AUTO), KELADJUST_DONE);
    EXPECT_EQ(wishes.pathTaken, KELADJUST_CPU);
    libraryState().busyEvent()->signal();
}

// Whichever render is refused, no stage has worked on the picture twice.
TEST_F(RunOnGpu, AdjustsOnTheCpuWhatTheEngineRefuses) {
    const _AdjustParam record = everyStage().settings;
    HostPicture picture = randomPicture();
    libraryState().cpuOnly = true;
    const auto expected = onCpu(picture, record);
    libraryState().cpuOnly = false;
    for (AddingEffect* const refusing : {tones, ranges}) {
        refusing->refuses = true;
        HostPicture copy(picture);
        EXPECT_EQ(run(copy, record, KELADJUST_AUTO), KELADJUST_DONE);
        EXPECT_EQ(wishes.pathTaken, KELADJUST_CPU);
        EXPECT_STRNE(wishes.reason, "");
        EXPECT_TRUE(copy.bytes() == expected);
        refusing->refuses = false;
    }
}

TEST_F(RunOnGpu, LeavesThePictureAloneThatTheEngineRefuses) {
    const _AdjustParam record = everyStage().settings;
    HostPicture picture = randomPicture();
    const auto before = picture.bytes();
    for (AddingEffect* const refusing : {tones, ranges}) {
        refusing->refuses = true;
        EXPECT_EQ(run(picture, record, KELADJUST_GPU), KELADJUST_REFUSED);
        EXPECT_STRNE(wishes.reason, "");
        EXPECT_TRUE(picture.bytes() == before);
        refusing->refuses = false;
    }
    _AdjustParam clarityAndRange = identity;
    clarityAndRange.clarity = 40;
    clarityAndRange.range[KELADJUST_RANGE_BLUE].hue = 10;
    ranges->refuses = true;
    EXPECT_EQ(run(picture, clarityAndRange, KELADJUST_GPU), KELADJUST_REFUSED);
    EXPECT_TRUE(picture.bytes() == before);
}

TEST_F(RunOnGpu, RendersNothingForADriverThatIsTooOld) {
    libraryState().cpuOnly = true;
    HostPicture picture = randomPicture();
    const auto before = picture.bytes();
    EXPECT_EQ(run(picture, everyStage().settings, KELADJUST_GPU), KELADJUST_REFUSED);
    EXPECT_STRNE(wishes.reason, "");
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_EQ(tones->renders + ranges->renders, 0);
}

// With the wish for hardware a driver that renders in software counts as none, but not where the
// host insists on the engine.
TEST_F(RunOnGpu, MayBeLeftToHardware) {
    hardwareOnly = true;
    for (const bool isHardware : {true, false}) {
        engine.isHardware = isHardware;
        HostPicture picture = randomPicture();
        EXPECT_EQ(run(picture, everyStage().settings, KELADJUST_AUTO), KELADJUST_DONE);
        EXPECT_EQ(wishes.pathTaken, isHardware ? KELADJUST_GPU : KELADJUST_CPU);
        EXPECT_STREQ(wishes.reason, isHardware ? "" : "the driver renders in software");
        EXPECT_EQ(run(picture, everyStage().settings, KELADJUST_GPU), KELADJUST_DONE);
        EXPECT_EQ(wishes.pathTaken, KELADJUST_GPU);
    }
}

std::int32_t note(void* user, float share) {
    static_cast<std::vector<float>*>(user)->push_back(share);
    return 0;
}

TEST_F(RunOnGpu, TellsAShareThatGrowsFromNothingToAll) {
    const _AdjustParam record = everyStage().settings;
    HostPicture picture(151, 103, 32, IMAGE_FORMAT_BGRA);
    std::vector<float> shares;
    wishes = {};
    wishes.size = sizeof wishes;
    wishes.progress = note;
    wishes.user = &shares;
    EXPECT_EQ(keladjustRun(picture.image(), &record, sizeof record, &wishes), KELADJUST_DONE);
    ASSERT_GE(shares.size(), 2u);
    EXPECT_EQ(shares.front(), 0.0f);
    EXPECT_EQ(shares.back(), 1.0f);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
}

}  // namespace
