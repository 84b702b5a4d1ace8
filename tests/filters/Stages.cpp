// The catalogue of stages, against the record it describes.

#include "filters/Stages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "support/OddNumbers.h"
#include "support/StageSettings.h"

namespace {

using keladjust::cataloguedSlots;
using keladjust::pictureOf;
using keladjust::Program;
using keladjust::Setting;
using keladjust::Stage;
using keladjust::stages;
using keladjust::Wing;
using keladjust::test::identity;

// Which slots a stage has, in the order of the pipeline.
TEST(Stages, StandInThePipelinesOrder) {
    struct Expected {
        const char* name;
        int firstSlot;
        std::size_t settings;
        Wing wing;
    };
    const Expected expected[] = {
        {"temperature", 0, 1, Wing::tone},
        {"tint", 1, 1, Wing::tone},
        {"exposure", 2, 1, Wing::tone},
        {"brightness", 3, 1, Wing::tone},
        {"contrast", 4, 1, Wing::tone},
        {"vibrance", 5, 1, Wing::tone},
        {"saturation", 6, 1, Wing::tone},
        {"highlights", 7, 1, Wing::tone},
        {"shadows", 8, 1, Wing::tone},
        {"whites", 9, 1, Wing::tone},
        {"blacks", 10, 1, Wing::tone},
        {"red", 13, 5, Wing::range},
        {"orange", 18, 5, Wing::range},
        {"yellow", 23, 5, Wing::range},
        {"green", 28, 5, Wing::range},
        {"magenta", 33, 5, Wing::range},
        {"purple", 38, 5, Wing::range},
        {"blue", 43, 5, Wing::range},
        {"aqua", 48, 5, Wing::range},
        {"vignette", 53, 6, Wing::vignette},
        {"clarity", 11, 1, Wing::spatial},
        {"sharpen", 12, 1, Wing::spatial},
        {"distortion", 59, 1, Wing::spatial},
        {"fringing", 60, 1, Wing::spatial},
        {"dehaze", 61, 1, Wing::spatial},
        {"diffuse", 62, 1, Wing::spatial},
        {"colour-noise-reduction", 63, 1, Wing::spatial},
        {"luminance-noise-reduction", 64, 1, Wing::spatial},
    };
    // Those that have joined since, with slots behind these, may stand anywhere.
    std::vector<Stage> first;
    std::copy_if(stages.begin(), stages.end(), std::back_inserter(first),
                 [](const Stage& stage) { return stage.firstSlot < 65; });
    ASSERT_EQ(first.size(), std::size(expected));
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_STREQ(first[i].name.c_str(), expected[i].name);
        EXPECT_EQ(first[i].firstSlot, expected[i].firstSlot) << expected[i].name;
        EXPECT_EQ(first[i].settings().size(), expected[i].settings) << expected[i].name;
        EXPECT_EQ(first[i].wing, expected[i].wing) << expected[i].name;
    }
}

TEST(Stages, HaveEachSlotOfTheRecordOnce) {
    std::multiset<int> slots;
    for (const Stage& stage : stages) {
        for (std::size_t i = 0; i < stage.settings().size(); ++i) {
            slots.insert(stage.firstSlot + static_cast<int>(i));
        }
    }
    ASSERT_EQ(slots.size(), std::size_t{KELADJUST_SLOT_COUNT});
    for (int slot = 0; slot < KELADJUST_SLOT_COUNT; ++slot)
        EXPECT_EQ(slots.count(slot), 1u) << slot;
}

TEST(Stages, AreNamedOnce) {
    std::set<std::string> names;
    for (const Stage& stage : stages) {
        EXPECT_TRUE(names.insert(stage.name.c_str()).second) << stage.name.c_str();
    }
}

TEST(Stages, RunOnlyForSettingsThatDoSomething) {
    for (const Stage& stage : stages) {
        EXPECT_FALSE(stage.isActive(identity)) << stage.name.c_str();
        for (std::size_t i = 0; i < stage.settings().size(); ++i) {
            const Setting& setting = stage.settings()[i];
            for (const float value : {0.25f, keladjust::test::quietNan}) {
                _AdjustParam record = identity;
                std::memcpy(reinterpret_cast<char*>(&record) +
                                4 * (static_cast<std::size_t>(stage.firstSlot) + i),
                            &value, sizeof value);
                EXPECT_EQ(stage.isActive(record), !setting.shapesOnly) << setting.name.c_str();
                // A kernel knows it as well.
                if (stage.forms.pixels == nullptr) continue;
                unsigned char bytes[64] = {};
                unsigned char* bits = bytes;
                CxImage image(&bits, 4, 4, 32, IMAGE_FORMAT_BGRA);
                EXPECT_EQ(stage.forms.pixels(*pictureOf(&image), stage.slots(record))->active(),
                          !setting.shapesOnly)
                    << setting.name.c_str();
            }
        }
    }
}

TEST(Stages, HaveAPlaceInColourTablesIfTheyLookAtNothingButAColour) {
    for (const Stage& stage : stages) {
        const bool looksAtColourAlone = stage.wing == Wing::tone || stage.wing == Wing::range;
        EXPECT_EQ(stage.forms.colours != nullptr, looksAtColourAlone) << stage.name.c_str();
    }
}

// The names that the programs declare: see their texts.
TEST(Stages, HaveUniformsUnderTheProgramsNames) {
    std::vector<std::string> tone;
    std::vector<std::string> range;
    for (const auto& slot : std::span(cataloguedSlots).first<65>()) {
        const std::string uniform = slot.setting->uniform.c_str();
        if (slot.stage->program == Program::tone) tone.push_back(uniform);
        if (slot.stage->program == Program::range) range.push_back(uniform);
        if (slot.stage->program == Program::none) {
            EXPECT_EQ(uniform, "");
        }
    }
    const std::vector<std::string> expectedTone{
        "temperature", "tint",      "exposure", "brightness", "contrast",  "vib",
        "sat",         "highLight", "shadow",   "whiteLevel", "blackLevel"};
    EXPECT_EQ(tone, expectedTone);
    std::vector<std::string> expectedRange{"sharpeness"};
    for (const char* word :
         {"Red", "Orange", "Yellow", "Green", "Magenta", "Purple", "Blue", "Aqua"}) {
        for (const char* ending :
             {"_degreeMinVal", "_degreeMaxVal", "_hueVal", "_satVal", "_brightnessVal"}) {
            expectedRange.push_back(std::string(word) + ending);
        }
    }
    for (const char* name : {"amount", "size", "roundness", "feather", "exposure", "highlights"}) {
        expectedRange.emplace_back(name);
    }
    EXPECT_EQ(range, expectedRange);
}

}  // namespace
