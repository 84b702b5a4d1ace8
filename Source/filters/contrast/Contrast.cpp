// Brightness: a gain for positive settings, an offset for negative ones. Contrast: a window of the
// channel range stretched over all of it, or the range squeezed towards its middle.

#include "filters/contrast/Contrast.h"
#include "filters/exposure/Brightness.h"

#include <cstdint>

#include "arithmetic/Rounding.h"
#include "filters/spans/Spans.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

// The value is used by its own sign, not by that of the setting: a positive one multiplies, any
// other is added. Far below -100 the offset's formula turns positive and so becomes a gain.
float brightnessGain(float setting) {
    return setting / 100.0f + 1.0f;
}
float brightnessOffsetByte(float setting) {
    return (1.0f / (setting / 253.0f + 0.99f) - 1.0f) * -255.0f * 0.6f;
}
float brightnessOffsetUnit(float setting) {
    return (1.0f - 1.0f / (setting / 253.0f + 0.99f)) * 0.6f;
}
float brighten(float channel, float value) {
    return value > 0.0f ? channel * value : channel + value;
}

// How far the window lies from the ends of the channel range, before rounding.
float contrastMargin(float setting) {
    return (setting > 0.0f ? 1.0f / (1.0f - setting / 255.0f) - 1.0f : setting / 255.0f) * 100.0f *
           0.5f;
}

// Windows turned inside out or too wide are replaced by fixed ones.
template <class Number>
constexpr ContrastWindow<Number> insideOut{120, 127, 15};
template <class Number>
constexpr ContrastWindow<Number> tooWide{-120, 127, 15};

ContrastWindow<std::int32_t> byteWindow(float setting) {
    const std::int32_t low = truncateToInt(contrastMargin(setting));
    const std::int32_t high = wrappingSubtract(255, low);
    if (high < low) return insideOut<std::int32_t>;
    if (low < -127) return tooWide<std::int32_t>;
    return {low, high, low < 0 ? 2 * low + 255 : 255 - 2 * low};
}

std::uint8_t stretchByte(std::uint8_t value, ContrastWindow<std::int32_t> window) {
    const std::int32_t c = value;
    if (window.low < 1) return static_cast<std::uint8_t>(c * window.range / 255 - window.low);
    if (c <= window.low) return 0;
    if (c > window.high) return 255;
    return static_cast<std::uint8_t>((c - window.low) * 255 / window.range);
}

ContrastWindow<float> unitWindow(float setting) {
    const float low = contrastMargin(setting);
    const float high = 255.0f - low;
    ContrastWindow<float> window{low, high, low < 0.0f ? 2.0f * low + 255.0f : 255.0f - 2.0f * low};
    if (high < low) {
        window = insideOut<float>;
    } else if (low < -127.0f) {
        window = tooWide<float>;
    }
    return {window.low / 255.0f, window.high / 255.0f, window.range / 255.0f};
}

}  // namespace

BrightnessKernel::BrightnessKernel(float setting)
    : active_(setting != 0.0f),
      unitValue_(setting > 0.0f ? brightnessGain(setting) : brightnessOffsetUnit(setting)) {
    const float value = setting > 0.0f ? brightnessGain(setting) : brightnessOffsetByte(setting);
    fill([value](std::uint8_t channel) {
        return clampToByte(brighten(static_cast<float>(channel), value));
    });
}

void BrightnessKernel::change(ColourRun& run) const {
    if (unitValue_ > 0.0f) {
        spans::multiply(run, unitValue_);
    } else {
        spans::offset(run, unitValue_);
    }
}

ContrastKernel::ContrastKernel(float setting)
    : active_(setting != 0.0f), unitWindow_(unitWindow(setting)) {
    const ContrastWindow<std::int32_t> window = byteWindow(setting);
    fill([window](std::uint8_t channel) { return stretchByte(channel, window); });
}

void ContrastKernel::change(ColourRun& run) const {
    const auto& [low, high, range] = unitWindow_;
    if (low > 0.0f) {
        spans::stretch(run, low, high, range);
    } else {
        spans::squeeze(run, low, range);
    }
}

}  // namespace keladjust

CxImage* brightnessAdjustment(CxImage* image, float brightness) {
    return keladjust::exportedForm(image, [&] {
        const keladjust::BrightnessKernel kernel(brightness);
        if (image != nullptr && kernel.active()) {
            keladjust::mapRawWalk(*image, *kernel.table());
        }
    });
}

CxImage* contrastAdjustment(CxImage* image, float contrast) {
    return keladjust::applyKernel<keladjust::ContrastKernel>(image, contrast);
}

float* lut3d_brightnessAdjustment(float* lut, unsigned long count, int stride, float brightness) {
    return keladjust::applyColourKernel<keladjust::BrightnessKernel>(lut, count, stride,
                                                                     brightness);
}

float* lut3d_contrastAdjustment(float* lut, unsigned long count, int stride, float contrast) {
    return keladjust::applyColourKernel<keladjust::ContrastKernel>(lut, count, stride, contrast);
}
