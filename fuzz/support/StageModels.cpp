#include "support/StageModels.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "filters/Stages.h"
#include "models/RawPixels.h"
#include "models/blur/Clarity.h"
#include "models/blur/Diffuse.h"
#include "models/blur/StackBlur.h"
#include "models/colour-ranges/ColourRanges.h"
#include "models/contrast/Contrast.h"
#include "models/dehaze/Dehaze.h"
#include "models/denoise/FlowGraph.h"
#include "models/exposure/Brightness.h"
#include "models/exposure/Exposure.h"
#include "models/grain/Grain.h"
#include "models/hue/Hue.h"
#include "models/lens/Distortion.h"
#include "models/lens/Fringing.h"
#include "models/saturation/Saturation.h"
#include "models/sharpen/Sharpen.h"
#include "models/temperature/Temperature.h"
#include "models/temperature/Tint.h"
#include "models/tonal/TonalRanges.h"
#include "models/vibrance/Vibrance.h"
#include "models/vignette/Vignette.h"
#include "models/white-balance/WhiteBalance.h"

namespace keladjust::fuzz {

namespace {

using namespace test;

/// `map(Bytes) -> Bytes` of every pixel's red, green and blue, in any depth and format.
template <class Map>
void mapPixels(CxImage& image, Map map) {
    for (int y = 0; y < static_cast<int>(image.height); ++y) {
        for (int x = 0; x < static_cast<int>(image.width); ++x) {
            const _tagMyRGBQUAD p = image.GetPixelColor(x, y, true);
            const Bytes out = map(Bytes{p.red, p.green, p.blue});
            image.SetPixelColor(
                x, y,
                {static_cast<std::uint8_t>(out[2]), static_cast<std::uint8_t>(out[1]),
                 static_cast<std::uint8_t>(out[0]), p.alpha});
        }
    }
}

// Of most stages: one setting, of which 0 is the identity.
template <Bytes (*model)(float, Bytes)>
void onPixels(CxImage& image, const StageSlots& slots) {
    const float setting = slots.get<float>(0);
    if (setting != 0) mapPixels(image, [&](Bytes in) { return model(setting, in); });
}
template <void (*model)(CxImage&, float)>
void onPicture(CxImage& image, const StageSlots& slots) {
    model(image, slots.get<float>(0));
}
template <Floats (*model)(float, Floats)>
Floats onColour(Floats colour, const StageSlots& slots) {
    const float setting = slots.get<float>(0);
    return setting == 0 ? colour : model(setting, colour);
}

template <auto form, class Places>
struct TableForm;
template <class... Numbers, float* (*form)(float*, unsigned long, int, Numbers...),
          std::size_t... places>
struct TableForm<form, std::index_sequence<places...>> {
    static float* run(float* lut, unsigned long count, int stride, const StageSlots& slots) {
        return form(lut, count, stride, slots.get<Numbers>(places)...);
    }
};
/// An exported table stage whose settings stand in its first slots.
template <auto form, std::size_t settings = 1>
constexpr auto tableForm = TableForm<form, std::make_index_sequence<settings>>::run;

void temperature(CxImage& image, const StageSlots& slots) {
    const auto setting = slots.get<std::int32_t>(0);
    if (setting == 11500) return;
    mapPixels(image, [&](Bytes in) { return temperatureModel(setting, in); });
}
Floats temperatureColour(Floats colour, const StageSlots& slots) {
    const auto setting = slots.get<std::int32_t>(0);
    return setting == 11500 ? colour : temperatureTableModel(setting, colour);
}

void brightness(CxImage& image, float setting) {
    if (setting != 0) mapRawPixels(image, [&](int c) { return brightnessModel(setting, c); });
}

Bytes contrast(float setting, Bytes in) {
    for (int& c : in) c = contrastModel(setting, c);
    return in;
}

template <const Tonal& tonal>
Bytes tonalPixel(float setting, Bytes in) {
    return tonalModel(tonal, setting, in);
}
template <const Tonal& tonal>
Floats tonalColour(float setting, Floats in) {
    return tonalTableModel(tonal, setting, in);
}

bool isActive(const Range& range) {
    return range.hue != 0 || range.saturation != 0 || range.brightness != 0;
}
void changeRange(CxImage& image, const Range& range) {
    if (isActive(range)) mapPixels(image, [&](Bytes in) { return byteModel(range, in); });
}
Floats changeRange(Floats colour, const Range& range) {
    return isActive(range) ? rangeModel(range, colour, clampUnit) : colour;
}
Range rangeOf(const StageSlots& slots) {
    return {slots.get<float>(0), slots.get<float>(1), slots.get<float>(2), slots.get<float>(3),
            slots.get<float>(4)};
}
/// A band and one change: of the hue, the saturation or the brightness.
template <float Range::*change>
Range rangeOfOne(const StageSlots& slots) {
    Range range{slots.get<float>(0), slots.get<float>(1), 0, 0, 0};
    range.*change = slots.get<float>(2);
    return range;
}
template <Range (*rangeFrom)(const StageSlots&)>
void onRange(CxImage& image, const StageSlots& slots) {
    changeRange(image, rangeFrom(slots));
}
template <Range (*rangeFrom)(const StageSlots&)>
Floats onRangeColour(Floats colour, const StageSlots& slots) {
    return changeRange(colour, rangeFrom(slots));
}
constexpr StageModel range{onRange<rangeOf>, onRangeColour<rangeOf>,
                           tableForm<lut3d_doHSLAdjustFilter, 5>};

void vignette(CxImage& image, const StageSlots& slots) {
    const auto slot = [&](std::size_t place) { return slots.get<float>(place); };
    vignetteModel(image, {slot(0), slot(3), slot(5), slot(1), slot(2), slot(4)});
}

void sharpenAnyDepth(CxImage& image, float setting) {
    // 16-bit pixels have no channel bytes to sharpen, other depths no pixels.
    if (image.bytesPerPixel != 0 && image.bytesPerPixel != 2) sharpenModel(image, setting);
}

template <bool hsl>
void denoise(CxImage& image, float setting) {
    denoiseModel(image, setting, hsl);
}

using ModelsByName = std::map<std::string_view, StageModel>;

const ModelsByName& models() {
    static const ModelsByName all = {
        {"temperature", {temperature, temperatureColour, tableForm<lut3d_temperatureAdjustment>}},
        {"tint", {onPixels<tintModel>, onColour<tintTableModel>, tableForm<lut3d_tintAdjustment>}},
        {"exposure",
         {onPixels<exposureModel>, onColour<exposureTableModel>,
          tableForm<lut3d_exposureAdjustment>}},
        {"brightness",
         {onPicture<brightness>, onColour<brightnessTableModel>,
          tableForm<lut3d_brightnessAdjustment>}},
        {"contrast",
         {onPixels<contrast>, onColour<contrastTableModel>, tableForm<lut3d_contrastAdjustment>}},
        {"vibrance",
         {onPixels<vibranceModel>, onColour<vibranceTableModel>,
          tableForm<lut3d_vibranceAdjustment>}},
        {"saturation",
         {onPixels<saturationModel>, onColour<saturationTableModel>,
          tableForm<lut3d_saturationAdjustment>}},
        {"highlights",
         {onPixels<tonalPixel<highlights>>, onColour<tonalColour<highlights>>,
          tableForm<lut3d_hdrHighlight>}},
        {"shadows",
         {onPixels<tonalPixel<shadows>>, onColour<tonalColour<shadows>>,
          tableForm<lut3d_hdrShadow>}},
        {"whites",
         {onPixels<tonalPixel<whites>>, onColour<tonalColour<whites>>,
          tableForm<lut3d_hdrWhiteLevel>}},
        {"blacks",
         {onPixels<tonalPixel<blacks>>, onColour<tonalColour<blacks>>,
          tableForm<lut3d_hdrBlackLevel>}},
        {"red", range},
        {"orange", range},
        {"yellow", range},
        {"green", range},
        {"magenta", range},
        {"purple", range},
        {"blue", range},
        {"aqua", range},
        {"vignette", {vignette}},
        {"clarity", {onPicture<clarityModel>}},
        {"sharpen", {onPicture<sharpenAnyDepth>}},
        {"distortion", {onPicture<distortionModel>}},
        {"fringing", {onPicture<fringingModel>}},
        {"dehaze", {onPicture<dehazeModel>}},
        {"diffuse", {onPicture<diffuseModel>}},
        {"colour-noise-reduction", {onPicture<denoise<false>>}},
        {"luminance-noise-reduction", {onPicture<denoise<true>>}},
    };
    return all;
}

void hue(CxImage& image, float angle) {
    if (angle == 0) return;
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t, std::size_t channels) {
        if (channels < 3) return;
        const Bytes turned = hueModel(angle, {pixel[0], pixel[1], pixel[2]});
        for (std::size_t c = 0; c < 3; ++c) pixel[c] = static_cast<std::uint8_t>(turned[c]);
    });
}

void grain(CxImage& image, const StageSlots& slots) {
    grainModel(image, slots.get<float>(0), slots.get<float>(1));
}

// Building blocks, as stages that take a picture's whole buffer, padding included, for their map.

/// A map's measures as the building blocks take them.
struct MapSize {
    explicit MapSize(const CxImage& image)
        : width(static_cast<int>(image.effWidth)), height(static_cast<int>(image.height)) {}

    int width;
    int height;
};

std::int32_t wholeSetting(const StageSlots& slots) {
    return wholeOf(slots.get<float>(0));
}

CxImage* blurBuffer(CxImage* image, const StageSlots& slots) {
    stackBlur(image->pBits, static_cast<int>(image->width), static_cast<int>(image->height),
              static_cast<int>(image->bytesPerPixel), wholeSetting(slots));
    return image;
}
void blurBufferModel(CxImage& image, const StageSlots& slots) {
    const std::int32_t radius = wholeSetting(slots);
    if (radius >= 1 && radius <= 254 && image.bpp % 8 == 0) blurImageModel(image, radius);
}

// Along rows, along columns, or neither.
std::int32_t passOf(const StageSlots& slots) {
    return wholeOf(slots.get<float>(1)) & 3;
}
CxImage* blurPassOfBuffer(CxImage* image, const StageSlots& slots) {
    stackBlurPass(image->pBits, static_cast<int>(image->width), static_cast<int>(image->height),
                  static_cast<int>(image->bytesPerPixel), wholeSetting(slots), passOf(slots));
    return image;
}
void blurPassOfBufferModel(CxImage& image, const StageSlots& slots) {
    const std::int32_t radius = wholeSetting(slots);
    const auto bytes = static_cast<int>(image.bytesPerPixel);
    if (radius < 1 || radius > 254 || bytes == 0 || bytes == 2) return;
    blurPassModel(image.pBits, static_cast<int>(image.width), static_cast<int>(image.height), bytes,
                  radius, passOf(slots));
}

CxImage* meanOfMap(CxImage* image, const StageSlots&) {
    const MapSize size(*image);
    const std::vector<std::uint8_t> source = pixelsOf(*image);
    meanFilter15(source.data(), image->pBits, size.width, size.height);
    return image;
}
void meanOfMapModel(CxImage& image, const StageSlots&) {
    const MapSize size(image);
    const std::vector<std::uint8_t> means = meanModel(pixelsOf(image), size.width, size.height);
    std::memcpy(image.pBits, means.data(), means.size());
}

// The largest byte goes in front.
CxImage* veilOfMap(CxImage* image, const StageSlots& slots) {
    const MapSize size(*image);
    unsigned char* const veil =
        estimateVeil(image->pBits, image->pBits, size.width, size.height, slots.get<float>(0));
    std::memcpy(image->pBits, veil, image->size);
    keladjustFree(veil);
    image->pBits[0] = mapMaximum(image->pBits, size.width, size.height);
    return image;
}
void veilOfMapModel(CxImage& image, const StageSlots& slots) {
    std::uint8_t largest = 0;
    for (unsigned i = 0; i < image.size; ++i) {
        std::uint8_t& byte = image.pBits[i];
        const int veil = clampByte(static_cast<float>(byte) * slots.get<float>(0));
        byte = static_cast<std::uint8_t>(std::min<int>(byte, veil));
        largest = std::max(largest, byte);
    }
    image.pBits[0] = largest;
}

CxImage* denoiseBuffer(CxImage* image, const StageSlots& slots) {
    const MapSize size(*image);
    dctDenoisePlane(image->pBits, image->pBits, size.width, size.height, size.width,
                    slots.get<float>(0));
    return image;
}
void denoiseBufferModel(CxImage& image, const StageSlots& slots) {
    std::vector<std::uint8_t> plane = pixelsOf(image);
    const std::size_t width = image.effWidth;
    writeInPlaceModel(plane, width, image.height, width,
                      flowGraphModel(plane, width, image.height, slots.get<float>(0)));
    std::memcpy(image.pBits, plane.data(), plane.size());
}

template <bool hsl>
CxImage* splitAndJoin(CxImage* image, const StageSlots&) {
    CxImage planes[4];
    const bool isSplit = hsl ? image->SplitHSLA(&planes[0], &planes[1], &planes[2], &planes[3])
                             : image->SplitRGBA(&planes[0], &planes[1], &planes[2], &planes[3]);
    if (isSplit) image->Combine(&planes[0], &planes[1], &planes[2], &planes[3], hsl ? 1 : 0);
    return image;
}
template <bool hsl>
void splitAndJoinModel(CxImage& image, const StageSlots&) {
    if (image.format == IMAGE_FORMAT_GRAY) return;
    mapPixels(image, [](Bytes in) { return hsl ? byteRgbOf(byteHslOf(in)) : in; });
}

constexpr Range (*oneHue)(const StageSlots&) = rangeOfOne<&Range::hue>;
constexpr Range (*oneSaturation)(const StageSlots&) = rangeOfOne<&Range::saturation>;
constexpr Range (*oneBrightness)(const StageSlots&) = rangeOfOne<&Range::brightness>;

/// The models in the order of the catalogue. A stage without one ends the program.
std::vector<StageModel> cataloguedModels() {
    std::vector<StageModel> inOrder;
    for (const Stage& stage : stages) {
        const auto found = models().find(stage.name.c_str());
        if (found == models().end() ||
            (found->second.colour != nullptr) != (stage.forms.colours != nullptr)) {
            std::fprintf(stderr,
                         "The stage \"%s\" has no model: see fuzz/support/StageModels.cpp\n",
                         stage.name.c_str());
            std::exit(1);
        }
        inOrder.push_back(found->second);
    }
    return inOrder;
}

}  // namespace

const StageModel& modelOf(const Stage& stage) {
    static const std::vector<StageModel> inOrder = cataloguedModels();
    return inOrder[static_cast<std::size_t>(&stage - stages.data())];
}

std::span<const LooseStage> looseStages() {
    static constexpr LooseStage all[] = {
        {"hue", 1, spatialForms<hueAdjustment, 0>().picture, onPicture<hue>},
        {"grain", 2, spatialForms<addNoiseFilter, 0, 1>().picture, grain},
        {"white balance", 1, spatialForms<whiteBalanceAdjustment, 0>().picture,
         onPicture<whiteBalanceModel>},
        {"hue of a range", 3, spatialForms<adjustHueFilter, 0, 1, 2>().picture, onRange<oneHue>},
        {"saturation of a range", 3, spatialForms<adjustSaturationFilter, 0, 1, 2>().picture,
         onRange<oneSaturation>},
        {"brightness of a range", 3, spatialForms<adjustBrightnessFilter, 0, 1, 2>().picture,
         onRange<oneBrightness>},
        {"blur", 1, blurBuffer, blurBufferModel},
        {"blur pass", 2, blurPassOfBuffer, blurPassOfBufferModel},
        {"15 x 15 mean", 0, meanOfMap, meanOfMapModel},
        {"veil", 1, veilOfMap, veilOfMapModel},
        {"DCT thresholding", 1, denoiseBuffer, denoiseBufferModel},
        {"colour planes", 0, splitAndJoin<false>, splitAndJoinModel<false>},
        {"planes of hue, saturation and lightness", 0, splitAndJoin<true>, splitAndJoinModel<true>},
    };
    return all;
}

std::span<const LooseTableStage> looseTableStages() {
    static constexpr LooseTableStage all[] = {
        {"hue of a range", 3, tableForm<lut3d_adjustHueFilter, 3>, onRangeColour<oneHue>},
        {"saturation of a range", 3, tableForm<lut3d_adjustSaturationFilter, 3>,
         onRangeColour<oneSaturation>},
        {"brightness of a range", 3, tableForm<lut3d_adjustBrightnessFilter, 3>,
         onRangeColour<oneBrightness>},
    };
    return all;
}

}  // namespace keladjust::fuzz
