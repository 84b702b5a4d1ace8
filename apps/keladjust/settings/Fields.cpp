#include "settings/Fields.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "text/Failure.h"
#include "text/NumberText.h"

namespace keladjust::app {

namespace {

constexpr std::string_view basic = "Basic";
constexpr std::string_view detail = "Presence and detail";
constexpr std::string_view colourRanges = "Colour ranges";
constexpr std::string_view vignette = "Vignette";
constexpr std::string_view lens = "Lens and effects";
constexpr std::string_view noise = "Noise";

/// A band works most in its middle, red's at 0, and less towards its ends. So that each works most
/// on the colour it is named after, the middles are at 0, 30, 60, 120, 180, 240, 270 and 300
/// degrees; so that no hue is out of reach, neighbours overlap around the whole circle.
struct ColourBand {
    const char* name;
    double from;
    double to;
};

constexpr ColourBand bands[KELADJUST_RANGE_COUNT] = {
    {"red", 300, 30},      {"orange", 0, 60},    {"yellow", 30, 90}, {"green", 60, 180},
    {"magenta", 270, 330}, {"purple", 240, 300}, {"blue", 180, 300}, {"aqua", 120, 240},
};

void addBand(std::vector<Field>& table, std::size_t index) {
    const ColourBand& band = bands[index];
    const std::string name = band.name;
    const std::size_t start = offsetof(_AdjustParam, range) + index * sizeof(_AdjustColourRange);
    const auto add = [&](const char* part, std::string meaning, double minimum, double maximum,
                         double identity, std::size_t offset) {
        table.push_back({name + '-' + part, colourRanges, std::move(meaning), minimum, maximum,
                         identity, false, start + offset});
    };
    add("min-degree", "first hue of the band", 0, 360, band.from,
        offsetof(_AdjustColourRange, minDegree));
    add("max-degree", "last hue of the band", 0, 360, band.to,
        offsetof(_AdjustColourRange, maxDegree));
    add("hue", "turns the band's hue, in degrees", -180, 180, 0, offsetof(_AdjustColourRange, hue));
    add("saturation", "", -100, 100, 0, offsetof(_AdjustColourRange, saturation));
    add("brightness", "", -100, 100, 0, offsetof(_AdjustColourRange, brightness));
}

#define KELADJUST_SLOT(member) false, offsetof(_AdjustParam, member)
#define KELADJUST_WHOLE_SLOT(member) true, offsetof(_AdjustParam, member)

std::vector<Field> makeTable() {
    std::vector<Field> table = {
        {"temperature", basic, "warmer above, cooler below", 1700, 24400, 11500,
         KELADJUST_WHOLE_SLOT(temperature)},
        {"tint", basic, "green to magenta", -100, 100, 0, KELADJUST_SLOT(tint)},
        {"exposure", basic, "50 is a factor of 2^0.6", -100, 100, 0, KELADJUST_SLOT(exposure)},
        {"brightness", basic, "", -100, 100, 0, KELADJUST_SLOT(brightness)},
        {"contrast", basic, "", -100, 100, 0, KELADJUST_SLOT(contrast)},
        {"vibrance", basic, "saturation, mostly of dull colours", -100, 100, 0,
         KELADJUST_SLOT(vibrance)},
        {"saturation", basic, "-100 is grey", -100, 100, 0, KELADJUST_SLOT(saturation)},
        {"highlights", basic, "bright parts", -100, 100, 0, KELADJUST_SLOT(highlights)},
        {"shadows", basic, "dark parts", -100, 100, 0, KELADJUST_SLOT(shadows)},
        {"whites", basic, "the brightest parts", -100, 100, 0, KELADJUST_SLOT(whites)},
        {"blacks", basic, "the darkest parts", -100, 100, 0, KELADJUST_SLOT(blacks)},
        {"clarity", detail, "local contrast", -100, 100, 0, KELADJUST_SLOT(clarity)},
        {"sharpen", detail, "", 0, 255, 0, KELADJUST_SLOT(sharpen)},
    };
    for (std::size_t index = 0; index < KELADJUST_RANGE_COUNT; ++index) addBand(table, index);
    const std::vector<Field> rest = {
        {"vignette-amount", vignette, "darkens the border when negative", -100, 100, 0,
         KELADJUST_SLOT(vignetteAmount)},
        {"vignette-size", vignette, "", 0, 100, 0, KELADJUST_SLOT(vignetteSize)},
        {"vignette-roundness", vignette, "", 0, 100, 0, KELADJUST_SLOT(vignetteRoundness)},
        {"vignette-feather", vignette, "", 0, 100, 0, KELADJUST_SLOT(vignetteFeather)},
        {"vignette-exposure", vignette, "of the inside", -100, 100, 0,
         KELADJUST_SLOT(vignetteExposure)},
        {"vignette-highlights", vignette, "50 is neutral inside a vignette", 0, 100, 0,
         KELADJUST_SLOT(vignetteHighlights)},
        {"distortion", lens, "barrel or pincushion", -100, 100, 0, KELADJUST_SLOT(distortion)},
        {"fringing", lens, "colour fringes", -100, 100, 0, KELADJUST_SLOT(fringing)},
        {"dehaze", lens, "negative adds haze", -100, 100, 0, KELADJUST_SLOT(dehaze)},
        {"diffuse", lens, "brightens; softens when positive", -100, 100, 0,
         KELADJUST_SLOT(diffuse)},
        {"colour-noise-reduction", noise, "", 0, 100, 0, KELADJUST_SLOT(colourNoiseReduction)},
        {"luminance-noise-reduction", noise, "", 0, 100, 0,
         KELADJUST_SLOT(luminanceNoiseReduction)},
    };
    table.insert(table.end(), rest.begin(), rest.end());
    return table;
}

#undef KELADJUST_SLOT
#undef KELADJUST_WHOLE_SLOT

}  // namespace

double Field::read(const _AdjustParam& record) const {
    const char* slot = reinterpret_cast<const char*>(&record) + offset;
    if (whole) {
        std::int32_t value = 0;
        std::memcpy(&value, slot, sizeof value);
        return value;
    }
    float value = 0;
    std::memcpy(&value, slot, sizeof value);
    return static_cast<double>(value);
}

void Field::write(_AdjustParam& record, double value) const {
    char* slot = reinterpret_cast<char*>(&record) + offset;
    if (whole) {
        const auto stored = static_cast<std::int32_t>(value);
        std::memcpy(slot, &stored, sizeof stored);
    } else {
        const auto stored = static_cast<float>(value);
        std::memcpy(slot, &stored, sizeof stored);
    }
}

void Field::check(double value, const std::string& what) const {
    if (!std::isfinite(value)) {
        throw Failure(what + " needs a finite number; useful values are " + rangeText(*this));
    }
    if (whole && value != std::trunc(value)) {
        throw Failure(what + " needs a whole number; useful values are " + rangeText(*this));
    }
    const double limit = whole ? static_cast<double>(std::numeric_limits<std::int32_t>::max())
                               : static_cast<double>(std::numeric_limits<float>::max());
    if (std::abs(value) > limit) {
        throw Failure(what + " is out of all bounds; useful values are " + rangeText(*this));
    }
}

std::span<const Field> fields() {
    static const std::vector<Field> table = makeTable();
    return table;
}

const Field* findField(std::string_view name) {
    for (const Field& field : fields()) {
        if (field.name == name) return &field;
    }
    return nullptr;
}

std::string rangeText(const Field& field) {
    return numberText(field.minimum) + ".." + numberText(field.maximum) + ", identity " +
           numberText(field.identity);
}

_AdjustParam identityRecord() {
    _AdjustParam record{};
    for (const Field& field : fields()) field.write(record, field.identity);
    return record;
}

}  // namespace keladjust::app
