#include "golden/Records.h"

#include <random>
#include <string>

#include "golden/Results.h"
#include "support/OddNumbers.h"

namespace keladjust::test {

namespace {

constexpr int floatSlots = 64;  // behind the temperature

_AdjustParam filled(int temperature, auto nextSetting) {
    _AdjustParam settings{};
    settings.temperature = temperature;
    float* const first = &settings.tint;
    for (int i = 0; i < floatSlots; ++i) first[i] = nextSetting();
    return settings;
}

}  // namespace

std::vector<NamedSettings> goldenRecords() {
    std::vector<NamedSettings> records{only("identity", [](_AdjustParam&) {}), everyGpuStage(),
                                       everyStage()};

    // What a user might come to: whole numbers between -60 and 60, the ranges where they belong.
    std::mt19937 generator(2);
    for (int i = 1; i <= 5; ++i) {
        _AdjustParam settings = filled(8000 + 1000 * i, [&generator] {
            return static_cast<float>(static_cast<int>(generator() % 121) - 60);
        });
        setRangeBounds(settings);
        records.push_back({"settings at random " + std::to_string(i), settings});
    }
    for (const float value :
         {quietNan, infinity, -infinity, 1e30f, -1e30f, 1e-42f, -300.0f, 300.0f}) {
        const _AdjustParam settings = filled(11500, [value] { return value; });
        records.push_back({callText("every slot", value), settings});
    }
    return records;
}

}  // namespace keladjust::test
