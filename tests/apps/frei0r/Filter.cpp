// The filter as hosts call it.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <thread>

#include "frei0r/Frames.h"
#include "frei0r/LoadedFilter.h"
#include "settings/Record.h"
#include "support/TemporaryFolder.h"

extern "C" {
#include <frei0r.h>
}

namespace {

using namespace keladjust::test;

constexpr FrameSize size = {61, 47};

/// What a slider does, by the library itself.
struct Slider {
    const char* name;
    double lowest, identity, highest;
    void (*set)(_AdjustParam& record, double value);
};

#define SLIDER(name, field, lowest, identity, highest)                        \
    {                                                                         \
        name, lowest, identity, highest, [](_AdjustParam& record, double v) { \
            record.field = static_cast<decltype(record.field)>(v);            \
        }                                                                     \
    }

const Slider sliders[] = {
    SLIDER("temperature", temperature, 1700, 11500, 16400),
    SLIDER("tint", tint, -100, 0, 100),
    SLIDER("exposure", exposure, -100, 0, 100),
    SLIDER("brightness", brightness, -100, 0, 100),
    SLIDER("contrast", contrast, -100, 0, 100),
    SLIDER("vibrance", vibrance, -100, 0, 100),
    SLIDER("saturation", saturation, -100, 0, 100),
    SLIDER("highlights", highlights, -100, 0, 100),
    SLIDER("shadows", shadows, -100, 0, 100),
    SLIDER("whites", whites, -100, 0, 100),
    SLIDER("blacks", blacks, -100, 0, 100),
    SLIDER("clarity", clarity, -100, 0, 100),
    SLIDER("sharpen", sharpen, 0, 0, 255),
    SLIDER("vignette-amount", vignetteAmount, -100, 0, 100),
    SLIDER("dehaze", dehaze, -100, 0, 100),
};

TEST(Filter, HasOneTextAndThenASliderForEachBasicSettingDehazeAndVignette) {
    const LoadedFilter filter;
    const auto parameters = filter.parameters();
    ASSERT_EQ(parameters.size(), 1 + std::size(sliders));
    EXPECT_EQ(parameters[0].name, "settings");
    EXPECT_EQ(parameters[0].type, F0R_PARAM_STRING);
    for (std::size_t index = 0; index < std::size(sliders); ++index) {
        EXPECT_EQ(parameters[1 + index].name, sliders[index].name);
        EXPECT_EQ(parameters[1 + index].type, F0R_PARAM_DOUBLE);
        EXPECT_NE(parameters[1 + index].explanation.find("0.5 is"), std::string::npos);
    }
}

TEST(Filter, LeavesFramesAloneToStartWith) {
    const LoadedFilter filter;
    const Instance instance(filter, size);
    const Frame frame = noiseFrame(size, 1);
    EXPECT_EQ(instance.adjusted(frame), frame);
    EXPECT_EQ(instance.text("settings"), "");
    for (const Slider& slider : sliders) EXPECT_EQ(instance.share(slider.name), 0.5) << slider.name;
}

// Quarters, because those of all ranges are numbers that a float holds exactly.
TEST(Filter, MapsEachSliderToItsUsefulRangeAboutIdentity) {
    const LoadedFilter filter;
    const Frame frame = noiseFrame(size, 2);
    for (const Slider& slider : sliders) {
        const auto [name, lowest, identity, highest, set] = slider;
        const std::pair<double, double> values[] = {{0, lowest},
                                                    {0.25, (lowest + identity) / 2},
                                                    {0.5, identity},
                                                    {0.75, (identity + highest) / 2},
                                                    {1, highest}};
        for (const auto& [share, value] : values) {
            Instance instance(filter, size);
            instance.set(name, share);
            const auto expected = adjusted(
                frame, size, recordWith([&](_AdjustParam& record) { set(record, value); }));
            EXPECT_EQ(instance.adjusted(frame), expected) << name << ' ' << share;
            EXPECT_EQ(instance.share(name), share);
        }
    }
}

TEST(Filter, KeepsAParameterThatIsSetToNoShareAtAll) {
    const LoadedFilter filter;
    const Frame frame = noiseFrame(size, 3);
    for (const Slider& slider : sliders) {
        Instance instance(filter, size);
        instance.set(slider.name, 0.75);
        const Frame before = instance.adjusted(frame);
        constexpr double infinity = std::numeric_limits<double>::infinity();
        for (const double wrong : {std::nan(""), infinity, -infinity, -1e-9, 1.0000001, 7.0}) {
            instance.set(slider.name, wrong);
            EXPECT_EQ(instance.share(slider.name), 0.75) << slider.name << ' ' << wrong;
        }
        EXPECT_EQ(instance.adjusted(frame), before) << slider.name;
    }
}

TEST(Filter, RefusesOneParameterAndTakesTheOthers) {
    const LoadedFilter filter;
    const Frame frame = noiseFrame(size, 4);
    Instance instance(filter, size);
    instance.set("tint", 0.75);
    instance.set("exposure", std::nan(""));
    instance.set("contrast", 0.25);
    EXPECT_EQ(instance.adjusted(frame), adjusted(frame, size, recordWith([](_AdjustParam& record) {
                                                     record.tint = 50;
                                                     record.contrast = -50;
                                                 })));
}

TEST(Filter, ReachesEverySettingByText) {
    const LoadedFilter filter;
    const Frame frame = noiseFrame(size, 5);
    for (const KeladjustSetting& setting : keladjust::app::allSettings()) {
        // A quarter of the way up, of a band that does something.
        const double value = std::round(static_cast<double>(setting.identity) * 0.75 +
                                        static_cast<double>(setting.highest) * 0.25);
        const std::string text = "orange-hue 60 vignette-amount -50 " + std::string(setting.name) +
                                 ' ' + std::to_string(static_cast<int>(value));
        Instance instance(filter, size);
        instance.set("settings", text.c_str());
        const _AdjustParam record = recordWith([&](_AdjustParam& changed) {
            changed.range[KELADJUST_RANGE_ORANGE].hue = 60;
            changed.vignetteAmount = -50;
            keladjust::app::setValue(changed, setting, value);
        });
        EXPECT_EQ(instance.adjusted(frame), adjusted(frame, size, record)) << text;
        EXPECT_EQ(instance.text("settings"), text);
    }
}

TEST(Filter, SetsWhatTheTextNamesWhateverTheSlidersSay) {
    const LoadedFilter filter;
    const Frame frame = noiseFrame(size, 6);
    Instance instance(filter, size);
    instance.set("exposure", 0.9);
    instance.set("contrast", 0.75);
    instance.set("settings", "exposure 20");
    instance.set("exposure", 0.1);
    EXPECT_EQ(instance.adjusted(frame), adjusted(frame, size, recordWith([](_AdjustParam& record) {
                                                     record.exposure = 20;
                                                     record.contrast = 50;
                                                 })));
    instance.set("settings", "");
    EXPECT_EQ(instance.adjusted(frame), adjusted(frame, size, recordWith([](_AdjustParam& record) {
                                                     record.exposure = -80;
                                                     record.contrast = 50;
                                                 })));
}

TEST(Filter, TakesAPreset) {
    const TemporaryFolder folder;
    const auto preset = folder / "my look.json";
    std::ofstream(preset) << R"({"clarity": 30, "aqua-saturation": -40})";
    const LoadedFilter filter;
    const Frame frame = noiseFrame(size, 7);
    Instance instance(filter, size);
    instance.set("settings", preset.c_str());
    EXPECT_EQ(instance.adjusted(frame), adjusted(frame, size, recordWith([](_AdjustParam& record) {
                                                     record.clarity = 30;
                                                     record.range[KELADJUST_RANGE_AQUA].saturation =
                                                         -40;
                                                 })));
}

TEST(Filter, KeepsItsTextWhenAnotherIsWrong) {
    const LoadedFilter filter;
    const Frame frame = noiseFrame(size, 8);
    Instance instance(filter, size);
    instance.set("settings", "exposure 20");
    const Frame before = instance.adjusted(frame);
    for (const char* wrong : {"exposre 20", "exposure", "exposure nan", "exposure 1e99",
                              "temperature 0.5", "nowhere.json", "/", "exposure 3 tint"}) {
        instance.set("settings", wrong);
        EXPECT_EQ(instance.text("settings"), "exposure 20") << wrong;
        EXPECT_EQ(instance.adjusted(frame), before) << wrong;
    }
    instance.set("settings", static_cast<const char*>(nullptr));
    EXPECT_EQ(instance.text("settings"), "");
}

TEST(Filter, TellsOnceOfAWrongShareThatIsSetForEveryFrame) {
    const LoadedFilter filter;
    Instance instance(filter, size);
    testing::internal::CaptureStderr();
    for (int frame = 0; frame < 100; ++frame) {
        instance.set("exposure", 7.0);
        instance.set("settings", "exposre 20");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "keladjust: exposure needs a number from 0 to 1, not 7; it stays at 0.5\n"
              "keladjust: unknown setting \"exposre\"; did you mean exposure?\n");
}

TEST(Filter, TakesFramesOfAnySize) {
    const LoadedFilter filter;
    for (const FrameSize any : {FrameSize{1, 1}, {1, 9}, {7, 1}, {62, 50}, {4099, 3}}) {
        Instance instance(filter, any);
        instance.set("settings", "exposure 20 clarity 40 vignette-amount -30 dehaze 20");
        const Frame frame = noiseFrame(any, 9);
        EXPECT_EQ(instance.adjusted(frame),
                  adjusted(frame, any, recordWith([](_AdjustParam& record) {
                               record.exposure = 20;
                               record.clarity = 40;
                               record.vignetteAmount = -30;
                               record.dehaze = 20;
                           })))
            << any.width << " x " << any.height;
    }
}

TEST(Filter, AdjustsInstancesOfDifferentSettingsAtOnce) {
    const LoadedFilter filter;
    const Frame frame = noiseFrame(size, 10);
    constexpr int threads = 4;
    std::vector<int> wrong(threads, 0);
    std::vector<std::thread> workers;
    for (int worker = 0; worker < threads; ++worker) {
        workers.emplace_back([&, worker] {
            for (int round = 0; round < 25; ++round) {
                const int exposure = 10 * worker + round;
                Instance instance(filter, size);
                instance.set("settings",
                             ("clarity 30 exposure " + std::to_string(exposure)).c_str());
                const Frame expected = adjusted(frame, size, recordWith([&](_AdjustParam& record) {
                                                    record.clarity = 30;
                                                    record.exposure = static_cast<float>(exposure);
                                                }));
                if (instance.adjusted(frame) != expected) ++wrong[static_cast<std::size_t>(worker)];
            }
        });
    }
    for (std::thread& worker : workers) worker.join();
    EXPECT_EQ(wrong, std::vector<int>(threads, 0));
}

// Hosts initialize it once for each place in a graph, and end one while another is at work.
TEST(Filter, WorksOnAfterAnotherUserHasEnded) {
    const LoadedFilter filter;
    Instance instance(filter, size);
    instance.set("exposure", 0.75);
    const Frame frame = noiseFrame(size, 11);
    const Frame before = instance.adjusted(frame);
    {
        const LoadedFilter other;
        const Instance last(other, size);
    }
    EXPECT_EQ(instance.adjusted(frame), before);
}

}  // namespace
