// Stages on pictures of any geometry, format, padding and settings: by themselves, one after
// another and as a pipeline, on every instruction set and with one thread or three, to the byte
// what their models give.

#include "filters/Stages.h"

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/Choices.h"
#include "support/Finding.h"
#include "support/GuardedBuffer.h"
#include "support/InstructionSets.h"
#include "support/StageModels.h"
#include "support/StageSettings.h"

namespace {

using namespace keladjust;
using namespace keladjust::fuzz;

/// Something that a picture goes through, in the library and in the model.
struct Step {
    std::string name;
    std::function<CxImage*(CxImage*)> run;
    std::function<void(CxImage&)> model;
};

Step chooseStep(FuzzedDataProvider& input) {
    _AdjustParam record = test::identity;
    const auto loose = looseStages();
    const auto choice =
        input.ConsumeIntegralInRange<std::size_t>(0, stages.size() + loose.size() - 1);
    if (choice < stages.size()) {
        const Stage& stage = stages.at(choice);
        chooseSettings(input, stage, record);
        return {textOf(stage, record),
                [&stage, record](CxImage* i) { return stage.run(i, record); },
                [&stage, record](CxImage& i) { modelOf(stage).picture(i, stage.slots(record)); }};
    }
    const LooseStage& stage = loose[choice - stages.size()];
    chooseLooseSettings(input, stage.settingCount, record);
    return {stage.name,
            [&stage, record](CxImage* i) {
                return stage.picture(i, {record, firstLooseSlot});
            },
            [&stage, record](CxImage& i) {
                stage.model(i, {record, firstLooseSlot});
            }};
}

std::vector<Step> chooseSteps(FuzzedDataProvider& input) {
    std::vector<Step> steps;
    const auto count = input.ConsumeIntegralInRange(0, 3);
    if (count > 0) {
        for (int i = 0; i < count; ++i) steps.push_back(chooseStep(input));
        return steps;
    }
    const _AdjustParam record = chooseRecord(input, chooseStage);
    std::string name = "the pipeline of";
    for (const Stage& stage : stages) {
        if (stage.isActive(record)) name += " " + textOf(stage, record) + ",";
    }
    steps.push_back({name, [record](CxImage* i) { return doAdjust(i, record); },
                     [record](CxImage& i) {
                         for (const Stage& stage : stages) {
                             modelOf(stage).picture(i, stage.slots(record));
                         }
                     }});
    return steps;
}

std::string describe(const std::vector<Step>& steps, const ChosenPicture& picture) {
    std::string text;
    for (const Step& step : steps) text += step.name + ", ";
    return text + std::to_string(picture.width) + " x " + std::to_string(picture.height) + ", " +
           std::to_string(picture.bpp) + " bits, format " + std::to_string(picture.format);
}

std::vector<std::uint8_t> expectedBytes(const std::vector<Step>& steps,
                                        const ChosenPicture& picture) {
    std::vector<std::uint8_t> bytes = picture.bytes;
    std::uint8_t* bits = bytes.data();
    CxImage image(&bits, picture.width, picture.height, picture.bpp, picture.format);
    for (const Step& step : steps) step.model(image);
    return bytes;
}

void expectAsModel(const std::vector<Step>& steps, const ChosenPicture& picture,
                   const std::vector<std::uint8_t>& expected, std::size_t offset,
                   const std::string& set) {
    GuardedBuffer buffer(picture.bytes, offset);
    unsigned char* bits = buffer.data();
    CxImage image(&bits, picture.width, picture.height, picture.bpp, picture.format);
    for (const Step& step : steps) {
        if (step.run(&image) != &image) {
            finding("%s returns another picture", describe(steps, picture).c_str());
        }
    }
    // memcmp first, which is not watched byte by byte
    if (std::memcmp(buffer.data(), expected.data(), expected.size()) != 0) {
        const auto [got, want] =
            std::mismatch(buffer.data(), buffer.data() + buffer.size(), expected.begin());
        finding("%s on %s: byte %td is %d instead of %d", describe(steps, picture).c_str(),
                set.c_str(), got - buffer.data(), *got, *want);
    }
    if (!buffer.isIntact()) {
        finding("%s on %s: a byte outside the buffer changed", describe(steps, picture).c_str(),
                set.c_str());
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    modelOf(stages.front());  // not a run of the target without every model
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    // Which of the instruction sets run with three threads, the others with one.
    bool isThreaded = input.ConsumeBool();
    const auto offset = input.ConsumeIntegral<std::uint8_t>();
    const std::vector<Step> steps = chooseSteps(input);
    const ChosenPicture picture = choosePicture(input);
    if (picture.bytes.empty()) return 0;

    const std::vector<std::uint8_t> expected = expectedBytes(steps, picture);
    // Large pictures, which would take nine tenths of the time, run on one instruction set in
    // five, which the input chooses.
    const bool isLarge = picture.bytes.size() > 32768;
    std::size_t number = offset;
    test::forEachInstructionSet([&](const std::string& set) {
        isThreaded = !isThreaded;
        if (isLarge && ++number % 5 != 0) return;
        setMaxThreads(isThreaded ? 1 : 3);
        expectAsModel(steps, picture, expected, offset, set);
    });
    return 0;
}
