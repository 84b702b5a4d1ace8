// Dehaze's walks over pixels: what is darkest about each, and its veil taken off.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/dehaze/DehazeRows.cpp"
#include <hwy/foreach_target.h>

#include "filters/dehaze/DehazeRows.h"

#include <algorithm>
#include <type_traits>

#include "arithmetic/Rounding.h"
#include "walks/RowVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

// Pixel by pixel: what the vectors below do for many at a time, and for the depths that they do not
// know.

Darkness darkestOneByOne(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                         std::uint8_t* darkest) {
    const std::size_t channels = std::min<std::size_t>(3, step);
    Darkness darkness;
    for (std::size_t i = 0; i < count; ++i, pixels += step) {
        darkest[i] = *std::min_element(pixels, pixels + channels);
        darkness.sum += darkest[i];
        darkness.brightest =
            std::max(darkness.brightest, *std::max_element(pixels, pixels + channels));
    }
    return darkness;
}

void unveilOneByOne(std::uint8_t* pixels, std::size_t count, std::size_t step,
                    const std::uint8_t* means, Veil veil) {
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

Darkness darkestChannels(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                         std::uint8_t* darkest) {
    return darkestOneByOne(pixels, count, step, darkest);
}

void unveil(std::uint8_t* pixels, std::size_t count, std::size_t step, const std::uint8_t* means,
            Veil veil) {
    unveilOneByOne(pixels, count, step, means, veil);
}

#else

// One byte for every quad.
using PixelTag = hn::Rebind<std::uint8_t, SignedQuadTag>;

// The channels of as many pixels of so many bytes as there are quads.
template <std::size_t channels>
struct Colour {
    SignedQuads at[channels];
};

template <std::size_t channels>
HWY_INLINE Colour<channels> loadColour(const std::uint8_t* pixels) {
    const PixelTag tag;
    const auto quads = [](auto bytes) HWY_ATTR { return hn::PromoteTo(SignedQuadTag(), bytes); };
    hn::Vec<PixelTag> bytes[3];
    if constexpr (channels == 1) {
        return {{quads(hn::LoadU(tag, pixels))}};
    } else if constexpr (channels == 2) {
        hn::LoadInterleaved2(tag, pixels, bytes[0], bytes[1]);
        return {{quads(bytes[0]), quads(bytes[1])}};
    } else {
        hn::LoadInterleaved3(tag, pixels, bytes[0], bytes[1], bytes[2]);
        return {{quads(bytes[0]), quads(bytes[1]), quads(bytes[2])}};
    }
}

template <std::size_t channels>
HWY_INLINE void storeColour(const Colour<channels>& colour, std::uint8_t* pixels) {
    const PixelTag tag;
    const auto bytes = [&](std::size_t c)
                           HWY_ATTR { return hn::DemoteTo(PixelTag(), colour.at[c]); };
    if constexpr (channels == 1) {
        hn::StoreU(bytes(0), tag, pixels);
    } else if constexpr (channels == 2) {
        hn::StoreInterleaved2(bytes(0), bytes(1), tag, pixels);
    } else {
        hn::StoreInterleaved3(bytes(0), bytes(1), bytes(2), tag, pixels);
    }
}

template <std::size_t channels>
HWY_INLINE SignedQuads darkestOf(const Colour<channels>& colour) {
    SignedQuads darkest = colour.at[0];
    for (std::size_t c = 1; c < channels; ++c) darkest = hn::Min(darkest, colour.at[c]);
    return darkest;
}

template <std::size_t channels>
HWY_INLINE SignedQuads brightestOf(const Colour<channels>& colour) {
    SignedQuads brightest = colour.at[0];
    for (std::size_t c = 1; c < channels; ++c) brightest = hn::Max(brightest, colour.at[c]);
    return brightest;
}

// Of pixels of four, without taking them apart.
HWY_INLINE SignedQuads darkestOf(Bytes pixels) {
    const Quads quads = hn::BitCast(QuadTag(), pixels);
    const Bytes second = hn::BitCast(RowTag(), hn::ShiftRight<8>(quads));
    const Bytes third = hn::BitCast(RowTag(), hn::ShiftRight<16>(quads));
    const Bytes darkest = hn::Min(hn::Min(pixels, second), third);
    return hn::And(hn::BitCast(SignedQuadTag(), darkest), hn::Set(SignedQuadTag(), 255));
}

// Calls `work(channels)`, a constant, for pixels of up to three bytes, of which each is a channel.
template <class Work>
HWY_INLINE void withColours(std::size_t step, Work work) {
    if (step == 1) work(std::integral_constant<std::size_t, 1>());
    if (step == 2) work(std::integral_constant<std::size_t, 2>());
    if (step == 3) work(std::integral_constant<std::size_t, 3>());
}

std::uint8_t largestOf(Bytes bytes) {
    HWY_ALIGN std::uint8_t lanes[32] = {};
    hn::Store(bytes, RowTag(), lanes);
    return *std::max_element(lanes, lanes + 32);
}

Darkness darkestChannels(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                         std::uint8_t* darkest) {
    const std::size_t vector = hn::Lanes(SignedQuadTag());
    SignedQuads sums = hn::Zero(SignedQuadTag());
    Bytes brightest = hn::Zero(RowTag());
    const auto take = [&](std::size_t i, SignedQuads smallest) HWY_ATTR {
        hn::StoreU(hn::DemoteTo(PixelTag(), smallest), PixelTag(), darkest + i);
        sums = hn::Add(sums, smallest);
    };
    std::size_t i = 0;
    const auto takeColours = [&](auto channels) HWY_ATTR {
        for (; i + vector <= count; i += vector) {
            const auto colour = loadColour<channels>(pixels + i * channels);
            take(i, darkestOf(colour));
            brightest = hn::Max(brightest, hn::BitCast(RowTag(), brightestOf(colour)));
        }
    };
    if (step == 4) {
        for (; i + vector <= count; i += vector) {
            const Bytes bytes = load(pixels + i * 4, Whole{});
            take(i, darkestOf(bytes));
            brightest = hn::Max(brightest, bytes);
        }
        brightest = hn::And(brightest, everyFour(0x00FFFFFF));
    } else {
        withColours(step, takeColours);
    }
    Darkness darkness = darkestOneByOne(pixels + i * step, count - i, step, darkest + i);
    HWY_ALIGN std::int32_t lanes[8];
    hn::Store(sums, SignedQuadTag(), lanes);
    for (std::size_t lane = 0; lane < vector; ++lane) {
        darkness.sum += static_cast<std::uint32_t>(lanes[lane]);
    }
    darkness.brightest = std::max(darkness.brightest, largestOf(brightest));
    return darkness;
}

// The veil on some pixels. It leaves every channel at least a tenth, so nothing here grows large.
class VeilOnPixels {
public:
    explicit VeilOnPixels(Veil veil) : factor_(held(hn::Set(FloatTag(), veil.factor))) {
#if HWY_NATIVE_FMA
        const float high = 1.0f / veil.light;
        const double rest = 1.0 / static_cast<double>(veil.light) - static_cast<double>(high);
        high_ = hn::Set(FloatTag(), high);
        low_ = hn::Set(FloatTag(), static_cast<float>(rest));
#else
        light_ = held(hn::Set(FloatTag(), veil.light));
#endif
    }

    HWY_INLINE SignedQuads depth(const std::uint8_t* means, SignedQuads darkest) const {
        const SignedQuads mean = hn::PromoteTo(SignedQuadTag(), hn::LoadU(PixelTag(), means));
        return hn::Min(darkest, limitedToBytes(hn::Mul(toFloats(mean), factor_)));
    }

    HWY_INLINE Floats kept(SignedQuads depth) const {
        return hn::Sub(held(hn::Set(FloatTag(), 1.0f)), overLight(toFloats(depth)));
    }

    // Of a channel from which the depth is taken off.
    HWY_INLINE static SignedQuads unveiled(SignedQuads channel, Floats kept) {
        return limitedToBytes(hn::Div(toFloats(channel), kept));
    }

private:
    // As hn::Div() gives it, by a reciprocal in two parts, for every depth and light that there
    // are.
    HWY_INLINE Floats overLight(Floats depth) const {
#if HWY_NATIVE_FMA
        return hn::MulAdd(depth, high_, hn::Mul(depth, low_));
#else
        return hn::Div(depth, light_);
#endif
    }

    Floats factor_;
#if HWY_NATIVE_FMA
    Floats high_;
    Floats low_;
#else
    Floats light_;
#endif
};

// The bytes at some place of every pixel of four as quads.
HWY_INLINE SignedQuads bytesAt(Bytes pixels, const std::uint8_t* places) {
    return hn::BitCast(SignedQuadTag(), bytesAtPlaces(pixels, hn::LoadDup128(RowTag(), places)));
}

// Pixels of four: their depth is taken off before they are taken apart.
HWY_INLINE void unveilFour(const VeilOnPixels& veil, const std::uint8_t* means,
                           std::uint8_t* pixels) {
    HWY_ALIGN static constexpr std::uint8_t spread[16] = {0, 0, 0, 128, 4,  4,  4,  128,
                                                          8, 8, 8, 128, 12, 12, 12, 128};
    HWY_ALIGN static constexpr std::uint8_t second[16] = {1, 128, 128, 128, 5,  128, 128, 128,
                                                          9, 128, 128, 128, 13, 128, 128, 128};
    HWY_ALIGN static constexpr std::uint8_t third[16] = {2,  128, 128, 128, 6,  128, 128, 128,
                                                         10, 128, 128, 128, 14, 128, 128, 128};
    const SignedQuadTag tag;
    const Bytes bytes = load(pixels, Whole{});
    const SignedQuads depth = veil.depth(means, darkestOf(bytes));
    const Floats kept = veil.kept(depth);
    const Bytes depths = hn::BitCast(RowTag(), bytesAt(hn::BitCast(RowTag(), depth), spread));
    const Bytes rest = hn::SaturatedSub(bytes, depths);
    const SignedQuads first = hn::And(hn::BitCast(tag, rest), hn::Set(tag, 255));
    const Places<true> places{{veil.unveiled(first, kept),
                               veil.unveiled(bytesAt(rest, second), kept),
                               veil.unveiled(bytesAt(rest, third), kept)}};
    store(joined(places, bytes), pixels, Whole{});
}

template <std::size_t channels>
HWY_INLINE void unveilColours(const VeilOnPixels& veil, const std::uint8_t* means,
                              std::uint8_t* pixels) {
    auto colour = loadColour<channels>(pixels);
    const SignedQuads depth = veil.depth(means, darkestOf(colour));
    const Floats kept = veil.kept(depth);
    for (SignedQuads& channel : colour.at) {
        channel = veil.unveiled(hn::Sub(channel, depth), kept);
    }
    storeColour(colour, pixels);
}

void unveil(std::uint8_t* pixels, std::size_t count, std::size_t step, const std::uint8_t* means,
            Veil veil) {
    const VeilOnPixels veilOnPixels(veil);
    const std::size_t vector = hn::Lanes(SignedQuadTag());
    std::size_t i = 0;
    if (step == 4) {
        for (; i + vector <= count; i += vector) {
            unveilFour(veilOnPixels, means + i, pixels + i * 4);
        }
    } else {
        withColours(step, [&](auto channels) HWY_ATTR {
            for (; i + vector <= count; i += vector) {
                unveilColours<channels>(veilOnPixels, means + i, pixels + i * channels);
            }
        });
    }
    unveilOneByOne(pixels + i * step, count - i, step, means + i, veil);
}

#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(darkestChannels);
HWY_EXPORT(unveil);

Darkness darkestChannels(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                         std::uint8_t* darkest) {
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
void unveil(std::uint8_t* pixels, std::size_t count, std::size_t step, const std::uint8_t* means,
            Veil veil) {
    HWY_DYNAMIC_DISPATCH(unveil)(pixels, count, step, means, veil);
}

}  // namespace keladjust
#endif
