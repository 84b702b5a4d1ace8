#include "operation/Properties.h"

#include <gegl-plugin.h>

#include <cstddef>
#include <exception>

#include "settings/PresetFile.h"

namespace keladjust::gegl {

namespace {

constexpr guint presetId = 1;  // GObject counts from 1
constexpr guint firstSliderId = 2;

// As the macros for operations have it.
constexpr auto flags =
    static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_CONSTRUCT | GEGL_PARAM_PAD_INPUT);

std::size_t sliderOf(guint id) {
    return id - firstSliderId;
}

// Any value works: the useful range bounds the slider only.
GParamSpec* wholeNumber(const KeladjustSetting& setting) {
    GParamSpec* spec =
        gegl_param_spec_int(setting.name, setting.label, setting.help, G_MININT32, G_MAXINT32,
                            static_cast<gint>(setting.usual), static_cast<gint>(setting.lowest),
                            static_cast<gint>(setting.highest), 1.0, flags);
    gegl_param_spec_int_set_steps(GEGL_PARAM_SPEC_INT(spec), 100, 1000);
    return spec;
}

GParamSpec* realNumber(const KeladjustSetting& setting) {
    const auto lowest = static_cast<double>(setting.lowest);
    const auto highest = static_cast<double>(setting.highest);
    constexpr auto limit = static_cast<double>(G_MAXFLOAT);
    GParamSpec* spec =
        gegl_param_spec_double(setting.name, setting.label, setting.help, -limit, limit,
                               static_cast<double>(setting.usual), lowest, highest, 1.0, flags);
    gegl_param_spec_double_set_steps(GEGL_PARAM_SPEC_DOUBLE(spec), 1, 10);
    gegl_param_spec_double_set_digits(GEGL_PARAM_SPEC_DOUBLE(spec), 1);
    constexpr double circle = 360;
    if (highest - lowest == circle) gegl_param_spec_set_property_key(spec, "unit", "degree");
    return spec;
}

}  // namespace

void installProperties(GObjectClass* type) {
    g_object_class_install_property(
        type, presetId,
        gegl_param_spec_file_path("preset", "Preset",
                                  "A preset's file, such as the command line saves; a slider that "
                                  "is moved replaces what it says",
                                  FALSE, FALSE, "", flags));
    guint id = firstSliderId;
    for (const KeladjustSetting& setting : app::allSettings()) {
        GParamSpec* spec = setting.isInteger != 0 ? wholeNumber(setting) : realNumber(setting);
        gegl_param_spec_set_property_key(spec, "group", setting.group);
        g_object_class_install_property(type, id++, spec);
    }
}

Properties::Properties() : sliders_(app::allSettings().size()) {}

void Properties::set(guint id, const GValue* value) {
    if (id == presetId) {
        const char* path = g_value_get_string(value);
        setPreset(path != nullptr ? path : "");
    } else if (G_VALUE_HOLDS_INT(value)) {
        sliders_[sliderOf(id)] = static_cast<double>(g_value_get_int(value));
    } else {
        sliders_[sliderOf(id)] = g_value_get_double(value);
    }
}

void Properties::setPreset(const char* path) {
    try {
        preset_ = *path != '\0' ? app::settingsFromPresetFile(path) : app::Settings();
        presetPath_ = path;
    } catch (const std::exception& error) {
        g_warning("%s", error.what());
    }
}

void Properties::get(guint id, GValue* value) const {
    if (id == presetId) {
        g_value_set_string(value, presetPath_.c_str());
    } else if (G_VALUE_HOLDS_INT(value)) {
        g_value_set_int(value, static_cast<gint>(sliders_[sliderOf(id)]));
    } else {
        g_value_set_double(value, sliders_[sliderOf(id)]);
    }
}

_AdjustParam Properties::record() const {
    app::Settings settings = preset_;
    for (const KeladjustSetting& setting : app::allSettings()) {
        const double number = sliders_[static_cast<std::size_t>(setting.slot)];
        if (number != static_cast<double>(setting.usual)) settings.set(setting, number);
    }
    return settings.record();
}

}  // namespace keladjust::gegl
