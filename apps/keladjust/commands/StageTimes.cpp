#include "commands/StageTimes.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include "pictures/PhotoImage.h"
#include "settings/Fields.h"

namespace keladjust::app {

namespace {

struct Stage {
    const char* name;
    void (*run)(CxImage*);
};

_AdjustParam elevenSettings() {
    _AdjustParam p = identityRecord();
    p.temperature = 13000;
    p.tint = 10;
    p.exposure = 10;
    p.brightness = 10;
    p.contrast = 20;
    p.vibrance = 30;
    p.saturation = 20;
    p.highlights = -40;
    p.shadows = 35;
    p.whites = 20;
    p.blacks = -15;
    return p;
}

_AdjustParam eightRanges() {
    _AdjustParam p = identityRecord();
    for (_AdjustColourRange& range : p.range) range.saturation = 20;
    return p;
}

constexpr Stage stages[] = {
    {"temperature", [](CxImage* i) { temperatureAdjustment(i, 13000); }},
    {"tint", [](CxImage* i) { tintAdjustment(i, 30); }},
    {"exposure", [](CxImage* i) { exposureAdjustment(i, 20); }},
    {"brightness", [](CxImage* i) { brightnessAdjustment(i, 20); }},
    {"contrast", [](CxImage* i) { contrastAdjustment(i, 20); }},
    {"vibrance", [](CxImage* i) { vibranceAdjustment(i, 40); }},
    {"saturation", [](CxImage* i) { saturationAdjustment(i, 20); }},
    {"highlights", [](CxImage* i) { hdrHighlight(i, -40); }},
    {"shadows", [](CxImage* i) { hdrShadow(i, 40); }},
    {"whites", [](CxImage* i) { hdrWhiteLevel(i, 20); }},
    {"blacks", [](CxImage* i) { hdrBlackLevel(i, -20); }},
    {"hue", [](CxImage* i) { hueAdjustment(i, 30); }},
    {"colour range, one slider", [](CxImage* i) { adjustSaturationFilter(i, 0, 60, 30); }},
    {"colour range, three sliders", [](CxImage* i) { doHSLAdjustFilter(i, 0, 60, 20, 30, -20); }},
    {"vignette", [](CxImage* i) { vignetteAdjustFilter(i, -50, 50, 50, 50, 0, 0); }},
    {"clarity", [](CxImage* i) { clarity(i, 40); }},
    {"sharpen", [](CxImage* i) { sharpen(i, 60); }},
    {"distortion", [](CxImage* i) { distortFilter(i, 20); }},
    {"fringing", [](CxImage* i) { fringingFilter(i, 20); }},
    {"dehaze", [](CxImage* i) { dehaze(i, 40); }},
    {"diffuse", [](CxImage* i) { diffuse(i, 30); }},
    {"colour noise reduction", [](CxImage* i) { deNoiseRGB(i, 30); }},
    {"luminance noise reduction", [](CxImage* i) { deNoiseLumiance(i, 30); }},
    {"grain", [](CxImage* i) { addNoiseFilter(i, 30, 50); }},
    {"white balance", [](CxImage* i) { whiteBalanceAdjustment(i, 50); }},
    {"eight colour ranges at once", [](CxImage* i) { doAdjust(i, eightRanges()); }},
    {"eleven global settings at once", [](CxImage* i) { doAdjust(i, elevenSettings()); }},
};

class Stopwatch {
public:
    double seconds() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

double medianSeconds(const Photo& photo, int runs, const std::function<void(CxImage*)>& stage) {
    std::vector<double> times;
    for (int run = -1; run < runs; ++run) {
        Photo copy = photo;
        const PhotoImage image(copy);
        const Stopwatch watch;
        stage(image.get());
        if (run >= 0) times.push_back(watch.seconds());
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    constexpr double finestClock = 1e-9;
    return std::max(*middle, finestClock);
}

}  // namespace

void timeStages(const Photo& photo, const std::optional<_AdjustParam>& settings, int runs,
                const std::function<void(const StageTime&)>& tell) {
    for (const Stage& stage : stages) tell({stage.name, medianSeconds(photo, runs, stage.run)});
    if (!settings) return;
    tell({"the settings given",
          medianSeconds(photo, runs, [&](CxImage* image) { doAdjust(image, *settings); })});
}

}  // namespace keladjust::app
