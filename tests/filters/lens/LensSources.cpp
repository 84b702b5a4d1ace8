// Both lens stages, which find their sources alike.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <utility>

#include "models/lens/Distortion.h"
#include "models/lens/Fringing.h"
#include "support/HostPicture.h"

namespace {

using keladjust::test::distortionModel;
using keladjust::test::fringingModel;
using keladjust::test::HostPicture;

// Nothing of a call is in the next: each bends its picture by its own size and setting.
TEST(LensCorrection, FollowsSizeAndSettingOfEveryCall) {
    struct Call {
        unsigned width, height;
        float setting;
    };
    constexpr Call calls[] = {{40, 30, 50}, {40, 30, 50}, {30, 40, 50}, {40, 30, 50},
                              {40, 30, 51}, {40, 31, 51}, {41, 31, 51}, {41, 31, -51}};
    for (const auto& [stage, model] :
         {std::pair{&distortFilter, &distortionModel}, {&fringingFilter, &fringingModel}}) {
        for (const Call& call : calls) {
            HostPicture picture(call.width, call.height, 32, IMAGE_FORMAT_RGBA);
            picture.fillRandom(8);
            HostPicture expected(picture);
            stage(picture.image(), call.setting);
            model(*expected.image(), call.setting);
            EXPECT_EQ(picture.bytes(), expected.bytes()) << call.width << ", " << call.setting;
        }
    }
}

// A band of rows fetches from those of others, which change meanwhile; few rows are within reach of
// a weak setting, and nearly all of a strong one.
TEST(LensCorrection, FetchesFromOtherBandsAsTheyWere) {
    constexpr std::pair<unsigned, unsigned> sizes[] = {{300, 700}, {701, 301}, {4500, 75}};
    for (const auto& [stage, model] :
         {std::pair{&distortFilter, &distortionModel}, {&fringingFilter, &fringingModel}}) {
        for (const auto& [width, height] : sizes) {
            for (const float setting : {1.0f, 30.0f, 100.0f, -20.0f, -100.0f, 1000.0f, -1500.0f}) {
                HostPicture original(width, height, 24, IMAGE_FORMAT_BGR);
                original.fillRandom(width);
                HostPicture expected(original);
                model(*expected.image(), setting);
                for (const int threads : {1, 2, 3, 16}) {
                    setMaxThreads(threads);
                    HostPicture picture(original);
                    stage(picture.image(), setting);
                    EXPECT_TRUE(picture.bytes() == expected.bytes())
                        << width << " x " << height << ", " << setting << ", " << threads
                        << " threads";
                    EXPECT_TRUE(picture.guardsIntact());
                }
            }
        }
    }
    setMaxThreads(0);
}

TEST(LensCorrection, AtZeroChangesNothing) {
    HostPicture picture(30, 20, 24, IMAGE_FORMAT_BGR);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(distortFilter(picture.image(), 0.0f), picture.image());
    EXPECT_EQ(fringingFilter(picture.image(), -0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
}

}  // namespace
