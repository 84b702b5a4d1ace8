#include "commands/StageTimes.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <thread>
#include <vector>

#include "pictures/PhotoImage.h"
#include "settings/Record.h"

namespace keladjust::app {

namespace {

using Work = std::function<void(Photo&)>;

/// What has no place in the record.
struct Filter {
    const char* name;
    void (*run)(CxImage*);
};

constexpr Filter filters[] = {
    {"hue", [](CxImage* i) { hueAdjustment(i, 30); }},
    {"grain", [](CxImage* i) { addNoiseFilter(i, 30, 50); }},
    {"white-balance", [](CxImage* i) { whiteBalanceAdjustment(i, 50); }},
};

/// Reads and writes every byte once.
void passOverMemory(Photo& photo, std::size_t threads) {
    const std::size_t size = photo.stride() * photo.height();
    unsigned char* const bytes = photo.row(0);
    const auto invert = [=](std::size_t share) {
        unsigned char* const end = bytes + size * (share + 1) / threads;
        for (unsigned char* byte = bytes + size * share / threads; byte != end; ++byte) {
            *byte = static_cast<unsigned char>(~*byte);
        }
    };
    std::vector<std::jthread> others;
    for (std::size_t share = 1; share < threads; ++share) others.emplace_back(invert, share);
    invert(0);
}

void adjust(Photo& photo, const _AdjustParam& record) {
    const PhotoImage image(photo);
    KeladjustRun run{};
    run.size = sizeof run;
    run.path = KELADJUST_CPU;
    keladjustRun(image.get(), &record, sizeof record, &run);
}

/// A quarter of the way from where nothing changes to the end of the useful range.
void move(_AdjustParam& record, const KeladjustSetting& setting) {
    const double from = static_cast<double>(setting.identity);
    const double value = from + (static_cast<double>(setting.highest) - from) / 4;
    setValue(record, setting, setting.isInteger != 0 ? std::round(value) : value);
}

/// A picture on which every stage leaves its mark: all kinds of colours, none like its neighbours.
Photo sample() {
    Photo photo(64, 64, ChannelLayout::bgra);
    std::uint32_t state = 1;
    for (std::uint32_t y = 0; y < photo.height(); ++y) {
        for (std::size_t i = 0; i < photo.stride(); ++i) {
            state = state * 1664525 + 1013904223;  // Knuth and Lewis
            photo.row(y)[i] = static_cast<unsigned char>(state >> 24);
        }
    }
    return photo;
}

bool samePixels(const Photo& left, const Photo& right) {
    return std::memcmp(left.row(0), right.row(0), left.stride() * left.height()) == 0;
}

/// Whether the setting does something by itself. Others say how their neighbours work.
bool hasEffect(const KeladjustSetting& setting) {
    const Photo before = sample();
    Photo after = before;
    _AdjustParam record = usualRecord();
    move(record, setting);
    adjust(after, record);
    return !samePixels(before, after);
}

std::vector<KeladjustSetting> settingsWithEffect() {
    const auto all = allSettings();
    std::vector<KeladjustSetting> settings(all.begin(), all.end());
    std::erase_if(settings, [](const KeladjustSetting& setting) { return !hasEffect(setting); });
    return settings;
}

/// All of them that stand under one heading with `name`.
_AdjustParam togetherWith(std::string_view name, const std::vector<KeladjustSetting>& settings) {
    _AdjustParam record = usualRecord();
    const std::string_view group = findSetting(name)->group;
    for (const KeladjustSetting& setting : settings) {
        if (setting.group == group) move(record, setting);
    }
    return record;
}

class Stopwatch {
public:
    double seconds() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

double medianSeconds(const Photo& photo, int runs, const Work& work) {
    std::vector<double> times;
    for (int run = -1; run < runs; ++run) {
        Photo copy = photo;
        const Stopwatch watch;
        work(copy);
        if (run >= 0) times.push_back(watch.seconds());
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    constexpr double finestClock = 1e-9;
    return std::max(*middle, finestClock);
}

}  // namespace

void timeStages(const Photo& photo, const std::optional<_AdjustParam>& given, int runs, int threads,
                const std::function<void(const StageTime&)>& tell) {
    const auto time = [&](const char* name, const Work& work) {
        tell({name, medianSeconds(photo, runs, work)});
    };
    const auto timeRecord = [&](const char* name, const _AdjustParam& record) {
        time(name, [&](Photo& picture) { adjust(picture, record); });
    };

    time("memory pass",
         [threads](Photo& picture) { passOverMemory(picture, static_cast<std::size_t>(threads)); });
    const std::vector<KeladjustSetting> settings = settingsWithEffect();
    for (const KeladjustSetting& setting : settings) {
        _AdjustParam record = usualRecord();
        move(record, setting);
        timeRecord(setting.name, record);
    }
    for (const Filter& filter : filters) {
        time(filter.name, [&](Photo& picture) { filter.run(PhotoImage(picture).get()); });
    }
    timeRecord("colour ranges at once", togetherWith("red-hue", settings));
    timeRecord("global settings at once", togetherWith("exposure", settings));
    if (given) timeRecord("the settings given", *given);
}

}  // namespace keladjust::app
