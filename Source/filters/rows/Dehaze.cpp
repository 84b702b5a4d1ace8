// Dehaze's walks over pixels: what is darkest about each, and its veil taken off.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/rows/Dehaze.cpp"
#include <hwy/foreach_target.h>

#include "filters/Rounding.h"
#include "filters/rows/Dehaze.h"
#include "filters/rows/RowVectors-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// Pixel by pixel: what the vectors below do for many at a time, and for the depths that they do not
// know.

rows::Darkness darkestOneByOne(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                               std::uint8_t* darkest) {
    const std::size_t channels = std::min<std::size_t>(3, step);
    rows::Darkness darkness;
    for (std::size_t i = 0; i < count; ++i, pixels += step) {
        darkest[i] = *std::min_element(pixels, pixels + channels);
        darkness.sum += darkest[i];
        darkness.brightest =
            std::max(darkness.brightest, *std::max_element(pixels, pixels + channels));
    }
    return darkness;
}

void unveilOneByOne(std::uint8_t* pixels, std::size_t count, std::size_t step,
                    const std::uint8_t* means, rows::Veil veil) {
    const std::size_t channels = std::min<std::size_t>(3, step);
    for (std::size_t i = 0; i < count; ++i, pixels += step) {
        const std::uint8_t darkest = *std::min_element(pixels, pixels + channels);
        const int depth =
            std::min(darkest, clampToByte(static_cast<float>(means[i]) * veil.factor));
        const float kept = 1.0f - static_cast<float>(depth) / veil.light;
        for (std::size_t c = 0; c < channels; ++c) {
            pixels[c] = clampToByte(static_cast<float>(pixels[c] - depth) / kept);
        }
    }
}

#if HWY_TARGET == HWY_SCALAR

rows::Darkness darkestChannels(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                               std::uint8_t* darkest) {
    return darkestOneByOne(pixels, count, step, darkest);
}

void unveil(std::uint8_t* pixels, std::size_t count, std::size_t step, const std::uint8_t* means,
            rows::Veil veil) {
    unveilOneByOne(pixels, count, step, means, veil);
}

#else

// One byte for every quad.
using PixelTag = hn::Rebind<std::uint8_t, SignedQuadTag>;

struct Colour {
    SignedQuads at[3];
};

// The channels of as many pixels as there are quads.
HWY_INLINE Colour loadColour(const std::uint8_t* pixels, std::size_t step) {
    if (step == 4) {
        const auto places = placesOf<true>(load(pixels, Whole{}));
        return {{places.at[0], places.at[1], places.at[2]}};
    }
    hn::Vec<PixelTag> bytes[3];
    hn::LoadInterleaved3(PixelTag(), pixels, bytes[0], bytes[1], bytes[2]);
    const SignedQuadTag tag;
    return {
        {hn::PromoteTo(tag, bytes[0]), hn::PromoteTo(tag, bytes[1]), hn::PromoteTo(tag, bytes[2])}};
}

HWY_INLINE void storeColour(const Colour& colour, std::size_t step, std::uint8_t* pixels) {
    if (step == 4) {
        const Places<true> places{{colour.at[0], colour.at[1], colour.at[2]}};
        store(joined(places, load(pixels, Whole{})), pixels, Whole{});
        return;
    }
    const PixelTag tag;
    hn::StoreInterleaved3(hn::DemoteTo(tag, colour.at[0]), hn::DemoteTo(tag, colour.at[1]),
                          hn::DemoteTo(tag, colour.at[2]), tag, pixels);
}

HWY_INLINE SignedQuads darkestOf(const Colour& colour) {
    return hn::Min(hn::Min(colour.at[0], colour.at[1]), colour.at[2]);
}

rows::Darkness darkestChannels(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                               std::uint8_t* darkest) {
    const std::size_t vector = hn::Lanes(SignedQuadTag());
    SignedQuads sums = hn::Zero(SignedQuadTag());
    SignedQuads brightest = hn::Zero(SignedQuadTag());
    std::size_t i = 0;
    if (step == 3 || step == 4) {
        for (; i + vector <= count; i += vector) {
            const Colour colour = loadColour(pixels + i * step, step);
            const SignedQuads smallest = darkestOf(colour);
            hn::StoreU(hn::DemoteTo(PixelTag(), smallest), PixelTag(), darkest + i);
            sums = hn::Add(sums, smallest);
            brightest =
                hn::Max(brightest, hn::Max(hn::Max(colour.at[0], colour.at[1]), colour.at[2]));
        }
    }
    rows::Darkness darkness = darkestOneByOne(pixels + i * step, count - i, step, darkest + i);
    HWY_ALIGN std::int32_t lanes[8];
    hn::Store(sums, SignedQuadTag(), lanes);
    for (std::size_t lane = 0; lane < vector; ++lane) {
        darkness.sum += static_cast<std::uint32_t>(lanes[lane]);
    }
    hn::Store(brightest, SignedQuadTag(), lanes);
    for (std::size_t lane = 0; lane < vector; ++lane) {
        darkness.brightest = std::max(darkness.brightest, static_cast<std::uint8_t>(lanes[lane]));
    }
    return darkness;
}

void unveil(std::uint8_t* pixels, std::size_t count, std::size_t step, const std::uint8_t* means,
            rows::Veil veil) {
    const FloatTag tag;
    const SignedQuadTag quadTag;
    const Floats factor = hn::Set(tag, veil.factor);
    const Floats light = hn::Set(tag, veil.light);
    const std::size_t vector = hn::Lanes(quadTag);
    std::size_t i = 0;
    if (step == 3 || step == 4) {
        for (; i + vector <= count; i += vector) {
            Colour colour = loadColour(pixels + i * step, step);
            const SignedQuads mean = hn::PromoteTo(quadTag, hn::LoadU(PixelTag(), means + i));
            const SignedQuads haze = clampToBytes(hn::Mul(toFloats(mean), factor));
            const SignedQuads depth = hn::Min(darkestOf(colour), haze);
            const Floats kept = hn::Sub(hn::Set(tag, 1.0f), hn::Div(toFloats(depth), light));
            for (SignedQuads& channel : colour.at) {
                channel = clampToBytes(hn::Div(toFloats(hn::Sub(channel, depth)), kept));
            }
            storeColour(colour, step, pixels + i * step);
        }
    }
    unveilOneByOne(pixels + i * step, count - i, step, means + i, veil);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(darkestChannels);
HWY_EXPORT(unveil);

rows::Darkness rows::darkestChannels(const std::uint8_t* pixels, std::size_t count,
                                     std::size_t step, std::uint8_t* darkest) {
    // Runs whose sums fit the 32 bits of a vector's lanes.
    constexpr std::size_t runPixels = 1 << 22;
    Darkness all;
    for (std::size_t i = 0; i < count; i += runPixels) {
        const Darkness run = HWY_DYNAMIC_DISPATCH(darkestChannels)(
            pixels + i * step, std::min(runPixels, count - i), step, darkest + i);
        all.sum += run.sum;
        all.brightest = std::max(all.brightest, run.brightest);
    }
    return all;
}
void rows::unveil(std::uint8_t* pixels, std::size_t count, std::size_t step,
                  const std::uint8_t* means, Veil veil) {
    HWY_DYNAMIC_DISPATCH(unveil)(pixels, count, step, means, veil);
}

}  // namespace keladjust
#endif
