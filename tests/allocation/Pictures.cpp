// Every call that takes a picture, short of each of its allocations: it adjusts the picture or
// leaves it as it was.

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "allocation/Allocations.h"
#include "support/EveryStage.h"
#include "support/HostPicture.h"

namespace {

using keladjust::Stage;
using keladjust::stages;
using keladjust::test::HostPicture;
using keladjust::test::identity;
using keladjust::test::PixelFormat;
using keladjust::test::stageAlone;
using keladjust::test::withEveryFault;
using Bytes = std::vector<std::uint8_t>;
using Adjustment = std::function<void(CxImage*)>;

/// A call on one thread over small pictures, and on two over one that is just worth it.
struct Trial {
    int threads;
    unsigned width, height;
    PixelFormat format;
};
constexpr Trial trials[] = {{1, 37, 23, {32, IMAGE_FORMAT_BGRA}},
                            {1, 37, 23, {24, IMAGE_FORMAT_RGB}},
                            {2, 512, 128, {32, IMAGE_FORMAT_BGRA}}};

/// One picture and what may become of it: the whole adjustment first.
class PictureCall {
public:
    PictureCall(const HostPicture& picture, const Adjustment& adjust,
                const std::vector<Bytes>& outcomes)
        : picture_(picture), adjust_(adjust), outcomes_(outcomes) {}

    void call() { adjust_(picture_.image()); }
    void check(bool struck) {
        const Bytes bytes = picture_.bytes();
        const auto end = struck ? outcomes_.end() : outcomes_.begin() + 1;
        EXPECT_NE(std::find(outcomes_.begin(), end, bytes), end)
            << (struck ? "adjusted in part" : "not adjusted");
        EXPECT_TRUE(picture_.guardsIntact());
    }

private:
    HostPicture picture_;
    const Adjustment& adjust_;
    const std::vector<Bytes>& outcomes_;
};

/// @param parts what may come out if memory is short, beside the picture as it was
void expectAllOrNothing(const std::string& what, const Adjustment& adjust, int mostThreads = 2,
                        const std::vector<Adjustment>& parts = {}) {
    for (const Trial& trial : trials) {
        if (trial.threads > mostThreads) continue;
        setMaxThreads(trial.threads);
        HostPicture picture(trial.width, trial.height, trial.format.bpp, trial.format.format);
        picture.fillRandom(5);
        const auto after = [&picture](const Adjustment& change) {
            HostPicture changed(picture);
            change(changed.image());
            return changed.bytes();
        };
        std::vector<Bytes> outcomes{after(adjust), picture.bytes()};
        ASSERT_NE(outcomes[0], outcomes[1]) << what << " does nothing";
        for (const Adjustment& part : parts) outcomes.push_back(after(part));
        withEveryFault(what + " of " + std::to_string(trial.format.bpp) + " bits on " +
                           std::to_string(trial.threads) + " threads",
                       [&] { return PictureCall(picture, adjust, outcomes); });
        if (testing::Test::HasFatalFailure()) return;
    }
    setMaxThreads(0);
}

TEST(PictureShortOfMemory, StagesOfTheRecordDoAllOrNothing) {
    for (const Stage& stage : stages) {
        const _AdjustParam record = stageAlone(stage);
        expectAllOrNothing(stage.name.c_str(),
                           [&](CxImage* image) { EXPECT_EQ(stage.run(image, record), image); });
    }
}

TEST(PictureShortOfMemory, OtherStagesDoAllOrNothing) {
    const std::pair<const char*, Adjustment> others[] = {
        {"hueAdjustment", [](CxImage* image) { hueAdjustment(image, 40); }},
        {"adjustHueFilter", [](CxImage* image) { adjustHueFilter(image, 300, 60, 40); }},
        {"adjustSaturationFilter",
         [](CxImage* image) { adjustSaturationFilter(image, 300, 60, 40); }},
        {"adjustBrightnessFilter",
         [](CxImage* image) { adjustBrightnessFilter(image, 300, 60, 40); }},
        {"addNoiseFilter", [](CxImage* image) { addNoiseFilter(image, 40, 30); }},
        {"whiteBalanceAdjustment", [](CxImage* image) { whiteBalanceAdjustment(image, 40); }},
        {"stackBlur",
         [](CxImage* image) {
             stackBlur(image->GetBits(), static_cast<int>(image->GetWidth()),
                       static_cast<int>(image->GetHeight()), static_cast<int>(image->GetBpp() / 8),
                       7);
         }},
        {"stackBlurPass",
         [](CxImage* image) {
             stackBlurPass(image->GetBits(), static_cast<int>(image->GetWidth()),
                           static_cast<int>(image->GetHeight()),
                           static_cast<int>(image->GetBpp() / 8), 7, 2);
         }},
        {"dctDenoisePlane",
         [](CxImage* image) {
             dctDenoisePlane(image->GetBits(), image->GetBits(), 37, 23,
                             static_cast<int>(image->GetEffWidth()), 20.0f);
         }},
    };
    for (const auto& [name, adjust] : others) expectAllOrNothing(name, adjust);
}

TEST(PictureShortOfMemory, PipelinesDoEachStageWhollyOrNot) {
    for (const Stage& stage : stages) {
        const _AdjustParam record = stageAlone(stage);
        expectAllOrNothing(
            std::string("doAdjust: ") + stage.name.c_str(),
            [&](CxImage* image) { EXPECT_EQ(doAdjust(image, record), image); }, 1);
    }

    // Several in a row: each may be the one that is left out, or several.
    _AdjustParam several = identity;
    several.exposure = 20;
    several.clarity = 30;
    several.dehaze = 25;
    several.luminanceNoiseReduction = 20;
    std::vector<Adjustment> parts;
    for (unsigned left = 1; left < 15; ++left) {
        _AdjustParam part = several;
        if ((left & 1) != 0) part.exposure = 0;
        if ((left & 2) != 0) part.clarity = 0;
        if ((left & 4) != 0) part.dehaze = 0;
        if ((left & 8) != 0) part.luminanceNoiseReduction = 0;
        parts.emplace_back([part](CxImage* image) { doAdjust(image, part); });
    }
    expectAllOrNothing(
        "doAdjust: several stages", [&](CxImage* image) { doAdjust(image, several); }, 2, parts);
    expectAllOrNothing(
        "keladjustRun: several stages",
        [&](CxImage* image) {
            KeladjustRun run{};
            run.size = sizeof run;
            run.path = KELADJUST_CPU;
            run.maxThreads = 1;
            const KeladjustResult result = keladjustRun(image, &several, sizeof several, &run);
            EXPECT_EQ(run.pathTaken, result == KELADJUST_DONE ? KELADJUST_CPU : KELADJUST_AUTO);
        },
        1, parts);
}

}  // namespace
