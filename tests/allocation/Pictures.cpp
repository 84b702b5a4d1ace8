// Every call that takes a picture, short of each of its allocations: it adjusts the picture or
// leaves it as it was.

#include <algorithm>
#include <bit>
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
using keladjust::test::Struck;
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

/// What may become of a picture.
struct Outcomes {
    Bytes whole;
    /// Without one stage, which may be all there is.
    std::vector<Bytes> withoutOne;
    /// Without more than one.
    std::vector<Bytes> withoutSeveral;
};

bool isIn(const std::vector<Bytes>& outcomes, const Bytes& bytes) {
    return std::find(outcomes.begin(), outcomes.end(), bytes) != outcomes.end();
}

class PictureCall {
public:
    PictureCall(const HostPicture& picture, const Adjustment& adjust, const Outcomes& outcomes)
        : picture_(picture), adjust_(adjust), outcomes_(outcomes) {}

    void call() { adjust_(picture_.image()); }
    void check(Struck struck) {
        const Bytes bytes = picture_.bytes();
        const bool without = struck && isIn(outcomes_.withoutOne, bytes);
        const bool withoutMore = struck && !struck.alone && isIn(outcomes_.withoutSeveral, bytes);
        EXPECT_TRUE(bytes == outcomes_.whole || without || withoutMore);
        EXPECT_TRUE(picture_.guardsIntact());
    }

private:
    HostPicture picture_;
    const Adjustment& adjust_;
    const Outcomes& outcomes_;
};

/// An adjustment and what is left of it without each of its stages, and without several.
struct Parts {
    Adjustment whole;
    std::vector<Adjustment> withoutOne = {[](CxImage*) {}};
    std::vector<Adjustment> withoutSeveral = {};
};

void expectAllOrNothing(const std::string& what, const Parts& parts, int mostThreads = 2) {
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
        Outcomes outcomes{after(parts.whole), {}, {}};
        for (const Adjustment& part : parts.withoutOne) outcomes.withoutOne.push_back(after(part));
        for (const Adjustment& part : parts.withoutSeveral) {
            outcomes.withoutSeveral.push_back(after(part));
        }
        ASSERT_FALSE(isIn(outcomes.withoutOne, outcomes.whole)) << what << " does too little";
        withEveryFault(what + " of " + std::to_string(trial.format.bpp) + " bits on " +
                           std::to_string(trial.threads) + " threads",
                       [&] { return PictureCall(picture, parts.whole, outcomes); });
        if (testing::Test::HasFatalFailure()) return;
    }
    setMaxThreads(0);
}

TEST(PictureShortOfMemory, StagesOfTheRecordDoAllOrNothing) {
    for (const Stage& stage : stages) {
        const _AdjustParam record = stageAlone(stage);
        expectAllOrNothing(stage.name.c_str(),
                           {[&](CxImage* image) { EXPECT_EQ(stage.run(image, record), image); }});
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
    for (const auto& [name, adjust] : others) expectAllOrNothing(name, {adjust});
}

TEST(PictureShortOfMemory, PipelinesOfOneStageDoAllOrNothing) {
    for (const Stage& stage : stages) {
        const _AdjustParam record = stageAlone(stage);
        expectAllOrNothing(std::string("doAdjust: ") + stage.name.c_str(),
                           {[&](CxImage* image) { EXPECT_EQ(doAdjust(image, record), image); }}, 1);
    }
}

TEST(PictureShortOfMemory, PipelinesGoOnAfterAStage) {
    // Two that share a pass, and two that look at the whole picture.
    _AdjustParam several = identity;
    several.exposure = 20;
    several.saturation = 30;
    several.clarity = 30;
    several.dehaze = 25;
    Parts parts;
    parts.withoutOne.clear();
    for (unsigned left = 1; left < 16; ++left) {
        _AdjustParam part = several;
        if ((left & 1) != 0) part.exposure = 0;
        if ((left & 2) != 0) part.saturation = 0;
        if ((left & 4) != 0) part.clarity = 0;
        if ((left & 8) != 0) part.dehaze = 0;
        auto& which = std::has_single_bit(left) ? parts.withoutOne : parts.withoutSeveral;
        which.emplace_back([part](CxImage* image) { doAdjust(image, part); });
    }
    parts.whole = [&](CxImage* image) { doAdjust(image, several); };
    expectAllOrNothing("doAdjust", parts);
    parts.whole = [&](CxImage* image) {
        KeladjustRun run{};
        run.size = sizeof run;
        run.path = KELADJUST_CPU;
        run.maxThreads = 1;
        EXPECT_EQ(keladjustRun(image, &several, sizeof several, &run), KELADJUST_DONE);
        EXPECT_EQ(run.pathTaken, KELADJUST_CPU);
    };
    expectAllOrNothing("keladjustRun", parts, 1);
}

}  // namespace
