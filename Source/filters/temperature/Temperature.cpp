// Temperature and tint: the two axes of white balance; and a strip of black-body colours.

#include "filters/temperature/Temperature.h"
#include "filters/temperature/Tint.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

#include "ImageFormat/Geometry.h"
#include "arithmetic/Rounding.h"
#include "filters/colour-ranges/HslColour.h"
#include "filters/spans/Spans.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

constexpr long identityTemperature = 11500;

// T. Helland, "How to Convert Temperature (K) to RGB" (2012), with refitted coefficients. The scale
// is 0..1, in double so that C libraries agree on the narrowed results.
struct BlackBody {
    explicit BlackBody(std::int64_t kelvin) {
        const double x = std::clamp(static_cast<double>(kelvin), 1000.0, 40000.0) / 100.0;
        red = x <= 66.0 ? 1.0 : unit(1.292936186062745 * std::pow(x - 60.0, -0.1332047592));
        green = unit(x <= 66.0 ? 0.3900815787690196 * std::log(x) - 0.6318414437886275
                               : 1.1298908608952942 * std::pow(x - 60.0, -0.0755148492));
        if (x >= 66.0) {
            blue = 1.0;
        } else if (x <= 19.0) {
            blue = 0.0;
        } else {
            blue = unit(0.543206789110196 * std::log(x - 10.0) - 1.19625408914);
        }
    }

    static double unit(double value) { return std::clamp(value, 0.0, 1.0); }
    static std::uint8_t toByte(double value) { return static_cast<std::uint8_t>(value * 255.0); }

    double red;
    double green;
    double blue;
};

// The black body of a setting and how strongly pixels are drawn to it. The scale jumps at its
// identity: just below it stands 14501 kelvin, just above 6599.
struct Warmth {
    explicit Warmth(std::int64_t temperature) {
        // Where the difference would leave 64 bits it saturates.
        constexpr std::int64_t lowest = 26000 - std::numeric_limits<std::int64_t>::max();
        if (temperature < identityTemperature) {
            kelvin = 26000 - std::max(temperature, lowest);
        } else {
            kelvin = std::max<std::int64_t>(18100 - temperature, 1700);
        }
        const float distance = 1.0f - static_cast<float>(kelvin) / 11500.0f;
        strength = static_cast<float>(std::fabs(static_cast<double>(distance))) * 1.7f;
    }

    std::int64_t kelvin;
    float strength;  // not limited: 2.14 at a setting of 0
};

// In 256ths; floors, so that small negative tints act and small positive ones do not.
std::int32_t tintStrength(float tint) {
    return truncateToInt(tint * 100.0f) >> 8;
}

}  // namespace

TemperatureKernel::TemperatureKernel(long temperature)
    : active_(temperature != identityTemperature) {
    const Warmth warmth(temperature);
    const BlackBody body(warmth.kelvin);
    const auto shareOf = [](double channel) {
        return static_cast<float>(BlackBody::toByte(channel)) / 255.0f;
    };
    blend_ = {shareOf(body.red), shareOf(body.green), shareOf(body.blue), warmth.strength};
    exactBlend_ = {static_cast<float>(body.red), static_cast<float>(body.green),
                   static_cast<float>(body.blue), warmth.strength};
}

void TemperatureKernel::run(PackedSpan& span) const {
    spans::blendKeepingLightness(span, blend_);
}

void TemperatureKernel::change(ColourRun& run) const {
    if (spans::isWithinUnit(run)) {
        spans::blendKeepingLightness(run, exactBlend_);
    } else {
        mapColours(run, [this](Colour c) { return blended(c); });
    }
}

Colour TemperatureKernel::blended(Colour c) const {
    const auto blend = [this](float channel, float share) {
        const float t = exactBlend_.strength;
        return clamp01((1.0f - t) * channel + share * channel * t);
    };
    HslColour hsl = toHsl({blend(c.red, exactBlend_.red), blend(c.green, exactBlend_.green),
                           blend(c.blue, exactBlend_.blue)});
    hsl.lightness = (largestOf(c) + smallestOf(c)) * 0.5f;
    return mapChannels(toRgb(hsl), clamp01);
}

TintKernel::TintKernel(float tint) : active_(tint != 0.0f), strength_(tintStrength(tint)) {}

void TintKernel::run(PackedSpan& span) const {
    spans::shiftTint(span, strength_);
}

void TintKernel::change(ColourRun& run) const {
    spans::shiftTint(run, static_cast<float>(strength_) / 255.0f);
}

}  // namespace keladjust

CxImage* temperatureAdjustment(CxImage* image, long temperature) {
    return keladjust::applyKernel<keladjust::TemperatureKernel>(image, temperature);
}

CxImage* tintAdjustment(CxImage* image, float tint) {
    return keladjust::applyKernel<keladjust::TintKernel>(image, tint);
}

float* lut3d_temperatureAdjustment(float* lut, unsigned long count, int stride, long temperature) {
    return keladjust::applyColourKernel<keladjust::TemperatureKernel>(lut, count, stride,
                                                                      temperature);
}

float* lut3d_tintAdjustment(float* lut, unsigned long count, int stride, float tint) {
    return keladjust::applyColourKernel<keladjust::TintKernel>(lut, count, stride, tint);
}

CxImage* createTemperateColor(int width, int height) {
    const keladjust::platform::DefaultFloatingPoint scope;
    auto strip = std::unique_ptr<CxImage>(new (std::nothrow) CxImage());
    if (strip == nullptr || width < 1 || height < 1) return strip.release();

    strip->Create(static_cast<unsigned>(width), static_cast<unsigned>(height), 24,
                  IMAGE_FORMAT_BGR);
    if (!keladjust::hasPixels(strip.get())) return strip.release();
    for (std::int64_t i = 0; i < width; ++i) {
        const keladjust::BlackBody body(30000 - 100 * i);
        strip->pBits[3 * i] = keladjust::BlackBody::toByte(body.blue);
        strip->pBits[3 * i + 1] = keladjust::BlackBody::toByte(body.green);
        strip->pBits[3 * i + 2] = keladjust::BlackBody::toByte(body.red);
    }
    for (unsigned y = 1; y < strip->height; ++y) {
        std::copy_n(strip->pBits, strip->effWidth, strip->pBits + std::size_t{strip->effWidth} * y);
    }
    return strip.release();
}
