// The functions that hosts of frei0r filters call. None lets an exception out: hosts are C.

#include <keladjust/keladjust.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>

#include "Effect.h"
#include "Parameters.h"

extern "C" {
#include <frei0r.h>
}

namespace {

using namespace keladjust::frei0r;

// The text comes first: positional hosts such as ffmpeg can leave out what comes last, not what
// comes before, and the text alone sets everything.
constexpr int textIndex = 0;
constexpr int firstSlider = 1;

std::size_t sliderAt(int parameter) {
    return static_cast<std::size_t>(parameter - firstSlider);
}

bool isSlider(int parameter) {
    return parameter >= firstSlider && sliderAt(parameter) < sliders().size();
}

Effect& effectOf(f0r_instance_t instance) {
    return *static_cast<Effect*>(instance);
}

}  // namespace

extern "C" {

int f0r_init() {
    try {
        sliders();
        return 1;
    } catch (const std::exception&) {
        return 0;
    }
}

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    info->name = "keladjust";
    info->author = "keladjust";
    info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
    // The order in which the command-line host has its pixels: one stage, distortion, moves bytes
    // rather than pixels and would give another picture in any other.
    info->color_model = F0R_COLOR_MODEL_BGRA8888;
    info->frei0r_version = FREI0R_MAJOR_VERSION;
    info->major_version = KELADJUST_VERSION_MAJOR;
    info->minor_version = KELADJUST_VERSION_MINOR;
    info->num_params = firstSlider + static_cast<int>(sliders().size());
    info->explanation = "Adjusts colour, tone and detail as the keladjust library does";
}

void f0r_get_param_info(f0r_param_info_t* info, int parameter) {
    if (parameter == textIndex) {
        info->name = "settings";
        info->type = F0R_PARAM_STRING;
        info->explanation =
            "A preset's file, or names and values such as: exposure 20 red-hue 5. "
            "What it names, it sets, whatever the sliders say";
    } else if (isSlider(parameter)) {
        const Slider& slider = sliders()[sliderAt(parameter)];
        info->name = slider.setting->name;
        info->type = F0R_PARAM_DOUBLE;
        info->explanation = slider.explanation.c_str();
    }
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
    try {
        return new Effect(width, height);
    } catch (const std::exception&) {
        return nullptr;
    }
}

void f0r_destruct(f0r_instance_t instance) {
    delete static_cast<Effect*>(instance);
}

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t value, int parameter) {
    try {
        if (parameter == textIndex) {
            const char* text = *static_cast<const f0r_param_string*>(value);
            effectOf(instance).setText(text != nullptr ? text : "");
        } else if (isSlider(parameter)) {
            effectOf(instance).setShare(sliderAt(parameter), *static_cast<double*>(value));
        }
    } catch (const std::exception&) {
        // Short of memory: what was set stays.
    }
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t value, int parameter) {
    if (parameter == textIndex) {
        // The interface's string is not const; it is the filter's all the same.
        *static_cast<f0r_param_string*>(value) =
            const_cast<char*>(effectOf(instance).text().c_str());
    } else if (isSlider(parameter)) {
        *static_cast<double*>(value) = effectOf(instance).share(sliderAt(parameter));
    }
}

void f0r_update(f0r_instance_t instance, double, const std::uint32_t* from, std::uint32_t* to) {
    effectOf(instance).adjust(from, to);
}

}  // extern "C"
