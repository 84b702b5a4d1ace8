// Brightness: a gain for positive settings, an offset for negative ones. Contrast: a window of the
// channel range stretched over all of it, or the range squeezed towards its middle.

#include "filters/BrightnessContrast.h"

#include <cstdint>

#include "filters/Rounding.h"
#include "filters/StageForms.h"

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

class BrightnessFormula {
public:
    explicit BrightnessFormula(float setting)
        : active_(setting != 0.0f),
          value_(setting > 0.0f ? brightnessGain(setting) : brightnessOffsetUnit(setting)) {}
    bool active() const { return active_; }
    Colour operator()(Colour c) const {
        return mapChannels(c, [this](float channel) { return clamp01(brighten(channel, value_)); });
    }

private:
    bool active_;
    float value_;
};

// How far the window lies from the ends of the channel range, before rounding.
float contrastMargin(float setting) {
    return (setting > 0.0f ? 1.0f / (1.0f - setting / 255.0f) - 1.0f : setting / 255.0f) * 100.0f *
           0.5f;
}

// The window whose inputs are mapped to the whole range; `Number` is int32_t for bytes and float
// for tables, whose window is not rounded.
template <class Number>
struct ContrastWindow {
    Number low;
    Number high;
    Number range;
};

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

class ContrastFormula {
public:
    explicit ContrastFormula(float setting)
        : active_(setting != 0.0f), window_(unitWindow(setting)) {}
    bool active() const { return active_; }
    Colour operator()(Colour c) const {
        return mapChannels(c, [this](float channel) { return stretch(channel); });
    }

private:
    float stretch(float c) const {
        if (!(window_.low > 0.0f)) return c * window_.range - window_.low;
        if (c <= window_.low) return 0.0f;
        if (c > window_.high) return 1.0f;
        return (c - window_.low) / window_.range;
    }

    bool active_;
    ContrastWindow<float> window_;
};

}  // namespace

BrightnessKernel::BrightnessKernel(float setting) : active_(setting != 0.0f) {
    const float value = setting > 0.0f ? brightnessGain(setting) : brightnessOffsetByte(setting);
    fill([value](std::uint8_t channel) {
        return clampToByte(brighten(static_cast<float>(channel), value));
    });
}

ContrastKernel::ContrastKernel(float setting) : active_(setting != 0.0f) {
    const ContrastWindow<std::int32_t> window = byteWindow(setting);
    fill([window](std::uint8_t channel) { return stretchByte(channel, window); });
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
    return keladjust::applyFormula<keladjust::BrightnessFormula>(lut, count, stride, brightness);
}

float* lut3d_contrastAdjustment(float* lut, unsigned long count, int stride, float contrast) {
    return keladjust::applyFormula<keladjust::ContrastFormula>(lut, count, stride, contrast);
}
