// Colour tables: table stages on entries of any numbers with any stride, bakes of any size in both
// orders, and the library's own table with its cube file; on every instruction set and with one
// thread or three, to the bit what the models give.

#include <keladjust/keladjust.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "filters/Stages.h"
#include "support/Choices.h"
#include "support/Finding.h"
#include "support/GuardedBuffer.h"
#include "support/InstructionSets.h"
#include "support/StageModels.h"
#include "support/StageSettings.h"

namespace {

using namespace keladjust;
using namespace keladjust::fuzz;
using test::Floats;

std::vector<const Stage*> tableStages() {
    std::vector<const Stage*> found;
    for (const Stage& stage : stages) {
        if (stage.forms.colours != nullptr) found.push_back(&stage);
    }
    return found;
}

const Stage& chooseTableStage(FuzzedDataProvider& input) {
    static const std::vector<const Stage*> all = tableStages();
    return *all.at(input.ConsumeIntegralInRange<std::size_t>(0, all.size() - 1));
}

/// Bit for bit, but that one NaN is as good as another.
bool areSame(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

void expectSame(const float* got, const std::vector<float>& expected, const std::string& what) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (!areSame(got[i], expected[i])) {
            finding("%s: float %zu is %.9g instead of %.9g", what.c_str(), i,
                    static_cast<double>(got[i]), static_cast<double>(expected[i]));
        }
    }
}

/// `body(name)` on every instruction set; every other one with three threads.
template <class Body>
void onEverySet(bool isThreaded, Body body) {
    test::forEachInstructionSet([&](const std::string& set) {
        setMaxThreads(isThreaded ? 3 : 1);
        body(set);
        isThreaded = !isThreaded;
    });
}

/// A table stage in the library and in the model.
struct Step {
    std::string name;
    std::function<float*(float*, unsigned long, int)> run;
    std::function<Floats(Floats)> model;
};

Step chooseStep(FuzzedDataProvider& input) {
    _AdjustParam record = test::identity;
    const auto loose = looseTableStages();
    const auto choice = input.ConsumeIntegralInRange<std::size_t>(0, 31);
    if (choice < loose.size()) {
        const LooseTableStage& stage = loose[choice];
        chooseLooseSettings(input, stage.settingCount, record);
        return {stage.name,
                [&stage, record](float* lut, unsigned long count, int stride) {
                    return stage.table(lut, count, stride, {record, firstLooseSlot});
                },
                [&stage, record](Floats c) {
                    return stage.model(c, {record, firstLooseSlot});
                }};
    }
    const Stage& stage = chooseTableStage(input);
    chooseSettings(input, stage, record);
    return {textOf(stage, record),
            [&stage, record](float* lut, unsigned long count, int stride) {
                return modelOf(stage).table(lut, count, stride, stage.slots(record));
            },
            [&stage, record](Floats c) { return modelOf(stage).colour(c, stage.slots(record)); }};
}

float chooseChannel(FuzzedDataProvider& input) {
    const auto whole = input.ConsumeIntegral<std::uint16_t>();
    return whole < 0xF000 ? static_cast<float>(whole) / static_cast<float>(0xEFFF)
                          : anyFloat(input);
}

/// Entries in order, each as the ones before have left it: with strides below three they overlap.
void runModel(float* lut, unsigned long count, int stride, const Step& step) {
    for (unsigned long i = 0; i < count; ++i) {
        float* const entry = lut + static_cast<std::ptrdiff_t>(i) * stride;
        const Floats out = step.model({entry[0], entry[1], entry[2]});
        std::copy(out.begin(), out.end(), entry);
    }
}

void tryStages(FuzzedDataProvider& input) {
    const bool isThreaded = input.ConsumeBool();
    std::vector<Step> steps;
    for (int i = input.ConsumeIntegralInRange(1, 3); i > 0; --i) steps.push_back(chooseStep(input));
    const int stride = input.ConsumeIntegralInRange(-7, 8);
    const auto byte = input.ConsumeIntegral<std::uint8_t>();
    const unsigned long count = byte < 250 ? byte / 4u : 100u * (byte - 249u);
    const std::size_t reach = static_cast<std::size_t>(std::abs(stride)) * count + 3;
    std::vector<float> floats(reach);
    const std::size_t given = std::min(reach, input.remaining_bytes() / 2);
    for (std::size_t i = 0; i < given; ++i) floats[i] = chooseChannel(input);
    for (std::size_t i = given; i < reach; ++i) {
        floats[i] = static_cast<float>(i * 7919 % 1021) / 1020.0f;
    }
    const std::size_t first = stride < 0 ? reach - 3 : 0;

    std::string what;
    std::vector<float> expected = floats;
    for (const Step& step : steps) {
        what += step.name + ", ";
        runModel(expected.data() + first, count, stride, step);
    }
    what += std::to_string(count) + " entries, stride " + std::to_string(stride) + ", on ";
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(floats.data());
    onEverySet(isThreaded, [&](const std::string& set) {
        GuardedBuffer buffer({bytes, bytes + 4 * reach}, 4);
        auto* const lut = reinterpret_cast<float*>(buffer.data());
        for (const Step& step : steps) {
            if (step.run(lut + first, count, stride) != lut + first) {
                finding("%s returns another table", step.name.c_str());
            }
        }
        expectSame(lut, expected, what + set);
        if (!buffer.isIntact()) finding("%s: a guard changed", (what + set).c_str());
    });
}

/// The colour of a lattice with `last` steps an axis, after the stages.
Floats baked(const _AdjustParam& record, int red, int green, int blue, int last) {
    const auto level = [&](int i) { return static_cast<float>(i) / static_cast<float>(last); };
    Floats colour{level(red), level(green), level(blue)};
    for (const Stage& stage : stages) {
        if (stage.forms.colours == nullptr) continue;
        colour = modelOf(stage).colour(colour, stage.slots(record));
    }
    return colour;
}

void tryBake(FuzzedDataProvider& input) {
    const bool isThreaded = input.ConsumeBool();
    const bool redFastest = input.ConsumeBool();
    const _AdjustParam record = chooseRecord(input, chooseTableStage);
    const auto byte = input.ConsumeIntegral<std::uint8_t>();
    // 21 is enough for several threads.
    const int edge = byte < 254 ? 2 + byte % 4 : byte == 254 ? 8 : 21;
    std::vector<float> expected;
    for (int slow = 0; slow < edge; ++slow) {
        for (int green = 0; green < edge; ++green) {
            for (int fast = 0; fast < edge; ++fast) {
                const Floats colour = redFastest ? baked(record, fast, green, slow, edge - 1)
                                                 : baked(record, slow, green, fast, edge - 1);
                expected.insert(expected.end(), colour.begin(), colour.end());
            }
        }
    }
    onEverySet(isThreaded, [&](const std::string& set) {
        const std::string what = "Bake of " + std::to_string(edge) + ", on " + set;
        GuardedBuffer buffer(std::vector<std::uint8_t>(4 * expected.size()), 4);
        auto* const points = reinterpret_cast<float*>(buffer.data());
        if (!keladjustBake(&record, sizeof record, edge, redFastest, points)) {
            finding("%s is refused", what.c_str());
        }
        expectSame(points, expected, what);
        if (!buffer.isIntact()) finding("%s: a guard changed", what.c_str());
    });
}

/// A file without a name.
class MemoryFile {
public:
    MemoryFile() : descriptor_(memfd_create("cube", 0)) {
        if (descriptor_ < 0) finding("no file in memory");
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }
    std::string text() const {
        std::string all;
        char block[1 << 16];
        off_t at = 0;
        for (ssize_t got = 0; (got = pread(descriptor_, block, sizeof block, at)) > 0; at += got) {
            all.append(block, static_cast<std::size_t>(got));
        }
        return all;
    }

private:
    int descriptor_;
};

void appendNumber(std::string& text, float value) {
    if (std::isnan(value)) {
        text += "nan";
        return;
    }
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<double>(value),
                                   std::chars_format::fixed, 8);
    text.append(digits, end.ptr);
}

// 32 colours an axis, tiled; the file has them one after another, on their way through 0..255.
void tryLibraryTable(FuzzedDataProvider& input) {
    constexpr int edge = 32;
    const _AdjustParam record = chooseRecord(input, chooseTableStage);
    std::vector<float> expected(std::size_t{edge} * edge * edge * 3);
    std::string text =
        "#LUT size\nLUT_3D_SIZE 32\n\n#data domain\nDOMAIN_MIN 0.0 0.0 0.0\n"
        "DOMAIN_MAX 1.0 1.0 1.0\n\n#LUT data points\n";
    for (int red = 0; red < edge; ++red) {
        for (int green = 0; green < edge; ++green) {
            for (int blue = 0; blue < edge; ++blue) {
                const int place = 8192 * (red / 8) + 256 * green + 32 * (red % 8) + blue;
                const Floats colour = baked(record, red, green, blue, edge - 1);
                std::copy(colour.begin(), colour.end(), expected.begin() + 3 * place);
                for (std::size_t c = 0; c < 3; ++c) {
                    appendNumber(text, colour[c] * 255.0f / 255.0f);
                    text += c < 2 ? ' ' : '\n';
                }
            }
        }
    }
    setMaxThreads(input.ConsumeBool() ? 3 : 1);
    initOgreRunTime(nullptr, nullptr);  // whether or not there is an engine
    const float* const table = getLut3dData(record);
    if (table == nullptr) finding("no colour table");
    expectSame(table, expected, "The library's table");
    const MemoryFile file;
    if (!writeLut3DFile(record, file.path().c_str())) finding("no cube file");
    if (file.text() != text) finding("the cube file is not the table's");
    releaseOgre();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    modelOf(stages.front());  // not a run of the target without every model
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto kind = input.ConsumeIntegral<std::uint16_t>();
    constexpr std::uint16_t libraryTable = 0x4C54;  // rarely met by chance: it takes long
    if (kind == libraryTable) {
        tryLibraryTable(input);
    } else if (kind % 3 == 0) {
        tryBake(input);
    } else {
        tryStages(input);
    }
    return 0;
}
