// Each per-pixel stage, and the same formula applied pixel by pixel through GetPixelColor() and
// SetPixelColor().

#include <keladjust/keladjust.h>

#include <functional>
#include <vector>

#include "models/colour-ranges/ColourRanges.h"
#include "models/contrast/Contrast.h"
#include "models/exposure/Brightness.h"
#include "models/exposure/Exposure.h"
#include "models/hue/Hue.h"
#include "models/saturation/Saturation.h"
#include "models/temperature/Temperature.h"
#include "models/temperature/Tint.h"
#include "models/tonal/TonalRanges.h"
#include "models/vibrance/Vibrance.h"
#include "support/Catalogued.h"
#include "support/Rows.h"

namespace {

using namespace keladjust::test;
using keladjust::bench::addRows;
using keladjust::bench::plainly;

struct Stage {
    const char* name;
    std::function<CxImage*(CxImage*)> library;
    Bytes (*formula)(Bytes);
    bool onPhotographToo = false;
};

constexpr Range orange{15, 75, 0, 30, 0};
constexpr Range orangeThree{15, 75, 20, 30, -20};

// Eight bands around the circle; the last one wraps.
constexpr Range eightBands[KELADJUST_RANGE_COUNT] = {
    {0, 60, 0, 20, 0},    {45, 105, 0, 20, 0},  {90, 150, 0, 20, 0},  {135, 195, 0, 20, 0},
    {180, 240, 0, 20, 0}, {225, 285, 0, 20, 0}, {270, 330, 0, 20, 0}, {315, 15, 0, 20, 0}};

CxImage* changeEightBands(CxImage* image) {
    _AdjustParam p{};
    p.temperature = 11500;
    for (int i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        const Range& band = eightBands[i];
        p.range[i] = {band.min, band.max, band.hue, band.saturation, band.brightness};
    }
    return doAdjust(image, p);
}

Bytes changeEightBandsModel(Bytes c) {
    for (const Range& band : eightBands) c = byteModel(band, c);
    return c;
}

Stage catalogued(const char* name, float value, Bytes (*formula)(Bytes)) {
    return {name, keladjust::bench::Catalogued(name, value), formula};
}

// The formulas compute their constants anew for every pixel, as the plainest host code would.
const Stage stages[] = {
    {"temperature", keladjust::bench::Catalogued("temperature", 9000),
     [](Bytes c) { return temperatureModel(9000, c); }, true},
    catalogued("tint", 40, [](Bytes c) { return tintModel(40, c); }),
    catalogued("exposure", 10, [](Bytes c) { return exposureModel(10, c); }),
    catalogued("brightness", 10,
               [](Bytes c) {
                   return Bytes{brightnessModel(10, c[0]), brightnessModel(10, c[1]),
                                brightnessModel(10, c[2])};
               }),
    catalogued(
        "contrast", 20,
        [](Bytes c) {
            return Bytes{contrastModel(20, c[0]), contrastModel(20, c[1]), contrastModel(20, c[2])};
        }),
    catalogued("vibrance", 50, [](Bytes c) { return vibranceModel(50, c); }),
    catalogued("saturation", 30, [](Bytes c) { return saturationModel(30, c); }),
    catalogued("highlights", -40, [](Bytes c) { return tonalModel(highlights, -40, c); }),
    catalogued("shadows", 40, [](Bytes c) { return tonalModel(shadows, 40, c); }),
    catalogued("whites", 20, [](Bytes c) { return tonalModel(whites, 20, c); }),
    catalogued("blacks", -20, [](Bytes c) { return tonalModel(blacks, -20, c); }),
    {"hue", [](CxImage* i) { return hueAdjustment(i, 30); },
     [](Bytes c) {
         const Bytes bgr = hueModel(30, {c[2], c[1], c[0]});
         return Bytes{bgr[2], bgr[1], bgr[0]};
     }},
    {"colour range, one slider",
     [](CxImage* i) { return adjustSaturationFilter(i, orange.min, orange.max, 30); },
     [](Bytes c) { return byteModel(orange, c); }, true},
    {"colour range, three sliders",
     [](CxImage* i) {
         return doHSLAdjustFilter(i, orangeThree.min, orangeThree.max, orangeThree.hue,
                                  orangeThree.saturation, orangeThree.brightness);
     },
     [](Bytes c) { return byteModel(orangeThree, c); }, true},
    {"eight colour ranges", changeEightBands, changeEightBandsModel, true},
};

void naive(CxImage& image, Bytes (*formula)(Bytes)) {
    const auto width = static_cast<int>(image.GetWidth());
    const auto height = static_cast<int>(image.GetHeight());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const _tagMyRGBQUAD p = image.GetPixelColor(x, y, true);
            const Bytes c = formula({p.red, p.green, p.blue});
            image.SetPixelColor(x, y,
                                {static_cast<unsigned char>(c[2]), static_cast<unsigned char>(c[1]),
                                 static_cast<unsigned char>(c[0]), p.alpha});
        }
    }
}

std::vector<keladjust::bench::Row> libraryRows() {
    std::vector<keladjust::bench::Row> rows;
    for (const Stage& stage : stages) {
        rows.push_back({stage.name, plainly([&stage](CxImage& image) { stage.library(&image); }),
                        stage.onPhotographToo});
    }
    return rows;
}

std::vector<keladjust::bench::Row> naiveRows() {
    std::vector<keladjust::bench::Row> rows;
    for (const Stage& stage : stages) {
        rows.push_back(
            {stage.name, plainly([&stage](CxImage& image) { naive(image, stage.formula); })});
    }
    return rows;
}

const bool added = addRows("library", libraryRows()) && addRows("naive", naiveRows());

}  // namespace
