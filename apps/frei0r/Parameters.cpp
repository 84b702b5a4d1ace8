#include "Parameters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <vector>

#include "settings/Record.h"
#include "text/NumberText.h"

namespace keladjust::frei0r {

namespace {

// What most videos need. Sixty-five parameters that cannot be left out would help nobody; the text
// reaches the others.
constexpr std::array<std::string_view, 2> wholeGroups = {"Basic", "Presence and detail"};
constexpr std::array<std::string_view, 2> singleSettings = {"dehaze", "vignette-amount"};

bool isShown(const KeladjustSetting& setting) {
    return std::ranges::find(wholeGroups, setting.group) != wholeGroups.end() ||
           std::ranges::find(singleSettings, setting.name) != singleSettings.end();
}

std::string explain(const KeladjustSetting& setting) {
    const auto text = [](float value) { return app::numberText(static_cast<double>(value)); };
    return std::string(setting.label) + ": 0 is " + text(setting.lowest) + ", 0.5 is " +
           text(setting.identity) + " and changes nothing, 1 is " + text(setting.highest) + ". " +
           setting.help;
}

std::vector<Slider> shownSliders() {
    std::vector<Slider> shown;
    for (const KeladjustSetting& setting : app::allSettings()) {
        if (isShown(setting)) shown.push_back({&setting, explain(setting)});
    }
    return shown;
}

}  // namespace

double Slider::value(double share) const {
    const auto identity = static_cast<double>(setting->identity);
    const auto end = static_cast<double>(share < atRest ? setting->lowest : setting->highest);
    const double value = identity + std::abs(share - atRest) / atRest * (end - identity);
    return setting->isInteger != 0 ? std::nearbyint(value) : value;
}

std::span<const Slider> sliders() {
    static const std::vector<Slider> all = shownSliders();
    return all;
}

}  // namespace keladjust::frei0r
