#ifndef KELADJUST_FILTERS_STAGES_H
#define KELADJUST_FILTERS_STAGES_H

#include <keladjust/CxImage.h>

#include <array>
#include <iterator>

#include "filters/Stage.h"
#include "filters/colour-ranges/ColourRanges.h"
#include "filters/contrast/Contrast.h"
#include "filters/exposure/Brightness.h"
#include "filters/exposure/Exposure.h"
#include "filters/saturation/Saturation.h"
#include "filters/temperature/Temperature.h"
#include "filters/temperature/Tint.h"
#include "filters/tonal/TonalRanges.h"
#include "filters/vibrance/Vibrance.h"
#include "filters/vignette/Vignette.h"

/// The catalogue of stages, one row each, in the order in which a picture goes through them.
/// Pipeline, colour tables, the engine's uniforms, the public description of the record, tests and
/// benchmarks are all made from it.
namespace keladjust {

namespace catalogue {

/// @name Settings
/// @{

/// -100..100
constexpr Setting bothWays(Text name, Text label, Text help, Text uniform = {}) {
    return {name, label, help, -100, 100, 0, 0, uniform};
}

/// 0..highest
constexpr Setting upTo(float highest, Text name, Text label, Text help, Text uniform = {}) {
    return {name, label, help, 0, highest, 0, 0, uniform};
}

/// A setting that says how others act, 0..highest, and is left at `usual` by most.
constexpr Setting shape(float highest, float usual, Text name, Text label, Text help,
                        Text uniform) {
    return {name, label, help, 0, highest, usual, usual, uniform, true};
}

/// Above 16400 the black body keeps its 1700 kelvin and nothing changes any more. Below there is no
/// such end: down to 1700 colours only grow bluer, and lower still channels are cut off.
constexpr Setting temperature() {
    return {"temperature", "Temperature", "Warmer above 11500, cooler below",
            1700,          16400,         11500,
            11500,         "temperature", false,
            true};
}

/// @}

/// @name Rows
/// @{

template <auto form, class Kernel>
constexpr Stage tone(int slot, const Setting& setting, Addressing addressing = Addressing::pixels) {
    return {
        setting.name, "Basic", Wing::tone, Program::tone, kernelForms<form, Kernel, 0>(), slot, 1,
        {setting},    1,       addressing};
}

/// A band works most in its middle, red's at 0, and less towards its ends. So that each works most
/// on the colour it is named after, the usual middles are at 0, 30, 60, 120, 180, 240, 270 and 300
/// degrees; so that no hue is out of reach, neighbours overlap around the whole circle.
constexpr Stage colourRange(int slot, Text name, Text word, float usualMin, float usualMax) {
    return {name,
            "Colour ranges",
            Wing::range,
            Program::range,
            kernelForms<doHSLAdjustFilter, ColourRangeKernel, 0, 1, 2, 3, 4>(),
            slot,
            5,
            {shape(360, usualMin, name + "-min-degree", word + " Min Degree",
                   "First hue of the band, in degrees", word + "_degreeMinVal"),
             shape(360, usualMax, name + "-max-degree", word + " Max Degree",
                   "Last hue of the band, in degrees", word + "_degreeMaxVal"),
             Setting{name + "-hue", word + " Hue", "Turns the band's hue, in degrees", -180, 180, 0,
                     0, word + "_hueVal"},
             bothWays(name + "-saturation", word + " Saturation", "Saturation of the band",
                      word + "_satVal"),
             bothWays(name + "-brightness", word + " Brightness", "Lightness of the band",
                      word + "_brightnessVal")},
            3};
}

constexpr Stage vignette(int slot) {
    return {
        "vignette",
        "Vignette",
        Wing::vignette,
        Program::range,
        kernelForms<vignetteAdjustFilter, VignetteKernel, 0, 3, 5, 1, 2, 4>(),
        slot,
        6,
        {bothWays("vignette-amount", "Vignette Amount",
                  "Darkens the border when negative, brightens it when positive", "amount"),
         shape(100, 50, "vignette-size", "Vignette Size", "Size of the inside", "size"),
         shape(100, 0, "vignette-roundness", "Vignette Roundness",
               "From the picture's proportions to a circle", "roundness"),
         shape(100, 50, "vignette-feather", "Vignette Feather",
               "Width of the passage from inside to border", "feather"),
         bothWays("vignette-exposure", "Vignette Exposure", "Exposure of the inside", "exposure"),
         shape(100, 50, "vignette-highlights", "Vignette Highlights",
               "How far bright parts of the border are spared; 50 is neutral", "highlights")}};
}

/// @param effort roughly how many nanoseconds a pixel takes
template <auto form>
constexpr Stage spatial(int slot, const char* group, unsigned effort, const Setting& setting,
                        Program program = Program::none) {
    return {setting.name, group, Wing::spatial, program, spatialForms<form, 0>(),
            slot,         1,     {setting},     effort};
}

/// @}

inline constexpr const char* detail = "Presence and detail";
inline constexpr const char* lens = "Lens and effects";
inline constexpr const char* noise = "Noise";

}  // namespace catalogue

// clang-format off
inline constexpr std::array stages = [] {
    using namespace catalogue;
    return std::array{
        tone<temperatureAdjustment, TemperatureKernel>(0, temperature()),
        tone<tintAdjustment, TintKernel>(1,
            bothWays("tint", "Tint", "From green to magenta", "tint")),
        tone<exposureAdjustment, ExposureKernel>(2,
            bothWays("exposure", "Exposure", "50 is a factor of 2^0.6", "exposure")),
        tone<brightnessAdjustment, BrightnessKernel>(3,
            bothWays("brightness", "Brightness", "A gain upwards, an offset downwards", "brightness"),
            Addressing::rawWalk),
        tone<contrastAdjustment, ContrastKernel>(4,
            bothWays("contrast", "Contrast", "About the middle of the range", "contrast")),
        tone<vibranceAdjustment, VibranceKernel>(5,
            bothWays("vibrance", "Vibrance", "Saturation, mostly of dull colours", "vib")),
        tone<saturationAdjustment, SaturationKernel>(6,
            bothWays("saturation", "Saturation", "-100 is grey", "sat")),
        tone<hdrHighlight, HighlightKernel>(7,
            bothWays("highlights", "Highlights", "Bright parts", "highLight")),
        tone<hdrShadow, ShadowKernel>(8,
            bothWays("shadows", "Shadows", "Dark parts", "shadow")),
        tone<hdrWhiteLevel, WhiteLevelKernel>(9,
            bothWays("whites", "Whites", "The brightest parts", "whiteLevel")),
        tone<hdrBlackLevel, BlackLevelKernel>(10,
            bothWays("blacks", "Blacks", "The darkest parts", "blackLevel")),

        colourRange(13, "red", "Red", 300, 30),
        colourRange(18, "orange", "Orange", 0, 60),
        colourRange(23, "yellow", "Yellow", 30, 90),
        colourRange(28, "green", "Green", 60, 180),
        colourRange(33, "magenta", "Magenta", 270, 330),
        colourRange(38, "purple", "Purple", 240, 300),
        colourRange(43, "blue", "Blue", 180, 300),
        colourRange(48, "aqua", "Aqua", 120, 240),

        vignette(53),

        spatial<clarity>(11, detail, 3,
            bothWays("clarity", "Clarity", "Local contrast")),
        spatial<sharpen>(12, detail, 1,
            upTo(255, "sharpen", "Sharpen", "255 adds the whole Laplacian", "sharpeness"),
            Program::range),
        spatial<distortFilter>(59, lens, 2,
            bothWays("distortion", "Distortion", "Barrel or pincushion")),
        spatial<fringingFilter>(60, lens, 4,
            bothWays("fringing", "Fringing", "Colour fringes, more towards the corners")),
        spatial<dehaze>(61, lens, 2,
            bothWays("dehaze", "Dehaze", "Removes haze; lays a veil when negative")),
        spatial<diffuse>(62, lens, 1,
            bothWays("diffuse", "Diffuse", "Brightens; softens, too, when positive")),
        spatial<deNoiseRGB>(63, noise, 60,
            upTo(100, "colour-noise-reduction", "Colour Noise Reduction", "Of red, green and blue")),
        spatial<deNoiseLumiance>(64, noise, 60,
            upTo(100, "luminance-noise-reduction", "Luminance Noise Reduction",
                 "Of hue, saturation and lightness")),
    };
}();
// clang-format on

/// A slot of the record with the rows it comes from.
struct CataloguedSlot {
    const Stage* stage = nullptr;
    const Setting* setting = nullptr;
};

/// The settings of all stages in the order of the record.
inline constexpr std::array<CataloguedSlot, slotCount> cataloguedSlots = [] {
    std::array<CataloguedSlot, slotCount> slots{};
    for (const Stage& stage : stages) {
        for (std::size_t i = 0; i < stage.settingCount; ++i) {
            slots.at(static_cast<std::size_t>(stage.firstSlot) + i) = {&stage,
                                                                       &stage.settingRows[i]};
        }
    }
    return slots;
}();

}  // namespace keladjust

#endif
