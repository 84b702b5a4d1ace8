// Hue, saturation and lightness of one band of hues at a time.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/colour-ranges/ColourRanges.cpp"
#include <hwy/foreach_target.h>

#include "filters/colour-ranges/ColourRanges.h"

#include <cmath>
#include <limits>

#include "walks/HslVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

// 0 outside the band, rising linearly to 1 at its middle, or at 0 degrees for a wrapping band.
HWY_INLINE Floats weightOf(const HueBand& band, Floats hue) {
    const Floats low = constant(band.minDegree);
    const Floats high = constant(band.maxDegree);
    const Floats one = constant(1.0f);
    if (band.wraps()) {
        const Floats rising = hn::Div(hn::Sub(hue, low), hn::Sub(constant(360.0f), low));
        const Floats falling = band.maxDegree == 0.0f ? one : hn::Sub(one, hn::Div(hue, high));
        return hn::IfThenElse(hn::Ge(hue, low), rising,
                              hn::IfThenElseZero(hn::Le(hue, high), falling));
    }
    const Floats distance = hn::Div(hn::Mul(hn::Sub(hue, low), constant(2.0f)), hn::Sub(high, low));
    const Floats triangle =
        hn::IfThenElse(hn::Le(distance, one), distance, hn::Sub(constant(2.0f), distance));
    return hn::IfThenElseZero(hn::And(hn::Gt(hue, low), hn::Lt(hue, high)), triangle);
}

HWY_INLINE Floats shiftHue(Floats hue, float shift) {
    const Floats turn = constant(360.0f);
    const Floats shifted = hn::Add(hue, constant(shift));
    return hn::IfThenElse(hn::Lt(shifted, constant(0.0f)), hn::Add(shifted, turn),
                          hn::IfThenElse(hn::Gt(shifted, turn), hn::Sub(shifted, turn), shifted));
}

HWY_INLINE Floats scale(Floats component, float ratio) {
    return clampTo(1.0f, hn::Mul(component, constant(1.0f + ratio)));
}

// Mixes by weight.
HWY_INLINE Channels<Floats> mix(const Channels<Floats>& from, const Channels<Floats>& to,
                                Floats weight) {
    const Floats rest = hn::Sub(constant(1.0f), weight);
    const auto channel = [&](Floats a, Floats b)
                             HWY_ATTR { return hn::Add(hn::Mul(rest, a), hn::Mul(weight, b)); };
    return {channel(from.red, to.red), channel(from.green, to.green), channel(from.blue, to.blue)};
}

// Pixels of a span from number `first` on, at most a run of them, on the scale 0..1.
class PixelRun {
public:
    using Numbers = UnitNumbers;

    PixelRun(PackedSpan& span, std::size_t first) : span_(span), first_(first) {}

    HWY_INLINE std::size_t count() const { return HWY_MIN(runLength, span_.count - first_); }
    HWY_INLINE Channels<Floats> load(std::size_t i) const {
        return mapChannels(loadIntChannels(span_, first_ + i),
                           [](Ints byte) HWY_ATTR { return quotientBy<255>(toFloats(byte)); });
    }
    HWY_INLINE void store(const Channels<Floats>& c, std::size_t i) const {
        const auto toByte = [](Floats channel) HWY_ATTR {
            return clampToBytes(hn::Mul(channel, constant(255.0f)));
        };
        storeClamped(mapChannels(c, toByte), span_, first_ + i);
    }
    // The same of numbers not far outside 0..1.
    HWY_INLINE void storeInRange(const Channels<Floats>& c, std::size_t i) const {
        const auto toByte = [](Floats channel) HWY_ATTR {
            return truncateInRange(hn::Mul(channel, constant(255.0f)));
        };
        storeClamped(mapChannels(c, toByte), span_, first_ + i);
    }
    static HWY_INLINE Floats sixthOf(Floats sixths) { return quotientBy<6>(sixths); }
    static HWY_INLINE Floats turnOf(Floats degrees) { return quotientBy<360>(degrees); }

private:
    PackedSpan& span_;
    std::size_t first_;
};

// Those of a table, between which differences can be too small for anything but a division.
template <class Of>
class TableRun : public UnitColours {
public:
    using Numbers = Of;

    explicit HWY_INLINE TableRun(ColourRun& run) : UnitColours(run) {}

    static HWY_INLINE Floats sixthOf(Floats sixths) { return hn::Div(sixths, constant(6.0f)); }
    static HWY_INLINE Floats turnOf(Floats degrees) { return hn::Div(degrees, constant(360.0f)); }
};

// A run between the halves of a step.
struct HslRun {
    alignas(64) float hue[runLength];
    alignas(64) float saturation[runLength];
    alignas(64) float lightness[runLength];
    alignas(64) float weight[runLength];
};

template <class Colours>
HWY_INLINE void convertRun(const Colours& colours, HslRun& run) {
    const FloatTag tag;
    for (std::size_t i = 0; i < colours.count(); i += hn::Lanes(tag)) {
        const Hsl hsl = toHsl<typename Colours::Numbers>(colours.load(i), Colours::sixthOf);
        hn::Store(hsl.hue, tag, run.hue + i);
        hn::Store(hsl.saturation, tag, run.saturation + i);
        hn::Store(hsl.lightness, tag, run.lightness + i);
    }
}

// Settings with which only numbers not far outside 0..1 are mixed, by weights that are numbers.
HWY_INLINE bool areModest(const HueBand& band, const RangeChange& change) {
    constexpr float most = 1e6f;
    const float low = band.minDegree;
    return std::fabs(change.shift) < most && std::fabs(low) < most && low != 360.0f;
}

// Mixes the colours with what `changed(hsl, places)` makes of them; both sides make the round trip.
template <class Colours, class Changed>
HWY_INLINE void mixRun(const HslRun& run, bool isModest, Colours& colours, Changed changed) {
    using Numbers = typename Colours::Numbers;
    const FloatTag tag;
    for (std::size_t i = 0; i < colours.count(); i += hn::Lanes(tag)) {
        const Hsl hsl{hn::Load(tag, run.hue + i), hn::Load(tag, run.saturation + i),
                      hn::Load(tag, run.lightness + i)};
        const Floats weight = hn::Load(tag, run.weight + i);
        const Channels<ChannelPlace> places = placesOf<Numbers>(Colours::turnOf(hsl.hue));
        const Channels<Floats> unchanged = toRgb<Numbers>(places, hsl.saturation, hsl.lightness);
        const FloatMask outside = hn::Eq(weight, constant(0.0f));
        if (isModest && hn::AllTrue(tag, outside)) {
            colours.storeInRange(unchanged, i);
            continue;
        }
        const Channels<Floats> mixed = mix(unchanged, changed(hsl, places), weight);
        if (isModest) {
            colours.storeInRange(mixed, i);
        } else {
            colours.store(mixed, i);
        }
    }
}

template <class Colours>
HWY_INLINE void changeRun(Colours colours, const HueBand& band, const RangeChange& change) {
    using Numbers = typename Colours::Numbers;
    const bool isModest = !Numbers::any && areModest(band, change);
    HslRun run;
    convertRun(colours, run);
    for (std::size_t i = 0; i < colours.count(); i += hn::Lanes(FloatTag())) {
        const Floats hue = hn::Load(FloatTag(), run.hue + i);
        hn::Store(weightOf(band, hue), FloatTag(), run.weight + i);
    }
    // Each step works on what the last one stored.
    bool isCurrent = true;
    const auto step = [&](float amount, auto changed) HWY_ATTR {
        if (amount == 0.0f) return;
        if (!isCurrent) convertRun(colours, run);
        isCurrent = false;
        mixRun(run, isModest, colours, changed);
    };
    step(change.shift, [&](const Hsl& hsl, const Channels<ChannelPlace>&) HWY_ATTR {
        // No number leaves the channels as low as an endless shift does.
        const float shift =
            std::isnan(change.shift) ? std::numeric_limits<float>::infinity() : change.shift;
        const Floats turn = hn::Div(shiftHue(hsl.hue, shift), constant(360.0f));
        const Channels<Floats> c =
            toRgb<Numbers>(placesOf<Numbers>(turn), hsl.saturation, hsl.lightness);
        if (isModest) return c;
        const FloatMask grey = hn::Eq(hsl.saturation, constant(0.0f));
        return mapChannels(c, [&](Floats channel) HWY_ATTR {
            return hn::IfThenElse(grey, hsl.lightness, channel);
        });
    });
    step(change.saturationRatio, [&](const Hsl& hsl,
                                     const Channels<ChannelPlace>& places) HWY_ATTR {
        return toRgb<Numbers>(places, scale(hsl.saturation, change.saturationRatio), hsl.lightness);
    });
    step(change.lightnessRatio, [&](const Hsl& hsl, const Channels<ChannelPlace>& places) HWY_ATTR {
        return toRgb<Numbers>(places, hsl.saturation, scale(hsl.lightness, change.lightnessRatio));
    });
}

void changePixels(PackedSpan& span, const HueBand& band, const RangeChange& change) {
    for (std::size_t first = 0; first < span.count; first += runLength) {
        changeRun(PixelRun(span, first), band, change);
    }
}

void changeColours(ColourRun& run, const HueBand& band, const RangeChange& change) {
    if (isWithinUnit(run)) {
        changeRun(TableRun<UnitNumbers>(run), band, change);
    } else {
        changeRun(TableRun<AnyNumbers>(run), band, change);
    }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(changePixels);
HWY_EXPORT(changeColours);

ColourRangeKernel::ColourRangeKernel(float minDegree, float maxDegree, float hue, float saturation,
                                     float brightness)
    : active_(hue != 0.0f || saturation != 0.0f || brightness != 0.0f),
      band_{minDegree, maxDegree},
      change_(hue, saturation, brightness) {}

void ColourRangeKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(changePixels)(span, band_, change_);
}

void ColourRangeKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(changeColours)(run, band_, change_);
}

}  // namespace keladjust

CxImage* doHSLAdjustFilter(CxImage* image, float minDegree, float maxDegree, float hue,
                           float saturation, float brightness) {
    return keladjust::applyKernel<keladjust::ColourRangeKernel>(image, minDegree, maxDegree, hue,
                                                                saturation, brightness);
}
CxImage* adjustHueFilter(CxImage* image, float minDegree, float maxDegree, float hue) {
    return doHSLAdjustFilter(image, minDegree, maxDegree, hue, 0.0f, 0.0f);
}
CxImage* adjustSaturationFilter(CxImage* image, float minDegree, float maxDegree,
                                float saturation) {
    return doHSLAdjustFilter(image, minDegree, maxDegree, 0.0f, saturation, 0.0f);
}
CxImage* adjustBrightnessFilter(CxImage* image, float minDegree, float maxDegree,
                                float brightness) {
    return doHSLAdjustFilter(image, minDegree, maxDegree, 0.0f, 0.0f, brightness);
}

float* lut3d_doHSLAdjustFilter(float* lut, unsigned long count, int stride, float minDegree,
                               float maxDegree, float hue, float saturation, float brightness) {
    return keladjust::applyColourKernel<keladjust::ColourRangeKernel>(
        lut, count, stride, minDegree, maxDegree, hue, saturation, brightness);
}
float* lut3d_adjustHueFilter(float* lut, unsigned long count, int stride, float minDegree,
                             float maxDegree, float hue) {
    return lut3d_doHSLAdjustFilter(lut, count, stride, minDegree, maxDegree, hue, 0.0f, 0.0f);
}
float* lut3d_adjustSaturationFilter(float* lut, unsigned long count, int stride, float minDegree,
                                    float maxDegree, float saturation) {
    return lut3d_doHSLAdjustFilter(lut, count, stride, minDegree, maxDegree, 0.0f, saturation,
                                   0.0f);
}
float* lut3d_adjustBrightnessFilter(float* lut, unsigned long count, int stride, float minDegree,
                                    float maxDegree, float brightness) {
    return lut3d_doHSLAdjustFilter(lut, count, stride, minDegree, maxDegree, 0.0f, 0.0f,
                                   brightness);
}

#endif
