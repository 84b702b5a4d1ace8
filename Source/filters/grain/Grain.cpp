// Grain: grey noise of a fixed pattern.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/grain/Grain.cpp"
#include <hwy/foreach_target.h>

#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iterator>

#include "arithmetic/Rounding.h"
#include "filters/grain/GrainGenerator.h"
#include "walks/DoubleVectors-inl.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

using StateTag = hn::RebindToUnsigned<FloatTag>;
using States = hn::Vec<StateTag>;

HWY_INLINE States take(Steps steps, States states) {
    const StateTag tag;
    return hn::Add(hn::Mul(states, hn::Set(tag, steps.factor)), hn::Set(tag, steps.addend));
}

// The sum of each pixel's last four draws, from the generator's state before the pixel.
HWY_INLINE States sumOfDraws(States states) {
    const auto draw = [states](std::uint64_t number) HWY_ATTR {
        return hn::And(take(repeated(oneDraw, number), states), hn::Set(StateTag(), 0x7FFF0000));
    };
    // Two draws fit side by side above bit 15, four do not.
    return hn::Add(hn::ShiftRight<16>(hn::Add(draw(2), draw(3))),
                   hn::ShiftRight<16>(hn::Add(draw(4), draw(5))));
}

// The sums of pixel after pixel, as many at a time as a vector has lanes.
class Sums {
public:
    explicit Sums(std::size_t firstPixel) {
        const StateTag tag;
        HWY_ALIGN std::array<std::uint32_t, HWY_LANES(std::uint32_t)> first;
        first[0] = repeated(oneDraw, drawsPerPixel * firstPixel)(grainSeed);
        for (std::size_t i = 1; i < hn::Lanes(tag); ++i) {
            first[i] = repeated(oneDraw, drawsPerPixel)(first[i - 1]);
        }
        states_ = hn::Load(tag, first.data());
        toNextVector_ = repeated(oneDraw, drawsPerPixel * hn::Lanes(tag));
    }

    HWY_INLINE States next() {
        const States sums = sumOfDraws(states_);
        states_ = take(toNextVector_, states_);
        return sums;
    }

private:
    States states_;
    Steps toNextVector_;
};

// What the grain does to bytes: adds numbers of 0..255, which saturate, and takes such.
struct Change {
    Ints added;
    Ints taken;
    bool certain;  ///< for all of the pixels
};

// The grain as its formula has it, and a way around most of its work. A byte plus a grain n,
// truncated, is the byte plus the next whole number below n, unless n is so close below a whole
// number that their sum is rounded up to one, which takes less than 2^-16. So the product of the
// sum and one factor for all the rest of the formula, in 4096ths, does as well: it is wrong by less
// than a third of one, by five roundings of numbers up to 256, and truncated by less than one. What
// lies that near to a whole number is uncertain.
class Grain {
public:
    explicit Grain(float scale)
        : scale_(scale),
          factor_(static_cast<float>(static_cast<double>(scale) * (127.0 * 4096 * step))),
          finite_(std::isfinite(factor_)) {}

    HWY_INLINE Floats of(States sums) const {
        const Floats number = throughDouble(hn::BitCast(IntTag(), sums), [](Doubles sum) HWY_ATTR {
            return minus(times(sum, constant(step)), constant(middle));
        });
        return hn::Mul(hn::Mul(number, constant(scale_)), constant(127.0f));
    }

    HWY_INLINE Change changeBy(States sums) const {
        constexpr std::int32_t middleSum = 2 * 32767;
        const Ints fromMiddle = hn::Sub(hn::BitCast(IntTag(), sums), constant(middleSum));
        const Floats grain = hn::Mul(toFloats(fromMiddle), constant(factor_));
        // From these ends on every byte becomes 0 or 255.
        const Floats bounded =
            hn::Min(hn::Max(grain, constant(-254.5f * 4096)), constant(255.5f * 4096));
        const Ints fixed = truncateInRange(bounded);
        const Ints below = hn::ShiftRight<12>(fixed);
        const Ints fraction = hn::And(hn::Add(fixed, constant(1)), constant(4095));
        const Ints zero = hn::Zero(IntTag());
        return {hn::Max(below, zero), hn::Max(hn::Sub(zero, below), zero),
                finite_ && hn::AllTrue(IntTag(), hn::Gt(fraction, constant(2)))};
    }

private:
    // Sums of four draws become numbers of mean 0 and variance 1: sqrt(3) / 32767 and 2 sqrt(3).
    static constexpr double step = 5.28596089837e-5;
    static constexpr double middle = 3.46410161514;

    float scale_;
    float factor_;
    bool finite_;
};

void addGrain(PixelSpan& span, std::size_t channels, std::size_t firstPixel, float scale) {
    const Grain grain(scale);
    Sums sumsOfPixels(firstPixel);
    std::uint8_t* const channelLanes[] = {span.blue, span.green, span.red};
    channels = std::min(channels, std::size(channelLanes));
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const States sums = sumsOfPixels.next();
        const Change change = grain.changeBy(sums);
        const ByteTag tag;
        const auto added = hn::DemoteTo(tag, change.added);
        const auto taken = hn::DemoteTo(tag, change.taken);
        for (std::size_t c = 0; c < channels; ++c) {
            std::uint8_t* const lane = channelLanes[c] + i;
            if (change.certain) {
                const auto bytes = hn::SaturatedAdd(hn::Load(tag, lane), added);
                hn::Store(hn::SaturatedSub(bytes, taken), tag, lane);
            } else {
                storeClamped(clampToBytes(hn::Add(loadFloats(lane), grain.of(sums))), lane);
            }
        }
    });
}

// As many pixels of four bytes as a vector has lanes.
HWY_INLINE void addToPixels(const Grain& grain, States sums, std::uint8_t* pixels) {
#if HWY_TARGET != HWY_SCALAR
    const Change change = grain.changeBy(sums);
    if (change.certain) {
        const hn::Repartition<std::uint8_t, StateTag> tag;
        HWY_ALIGN static constexpr std::uint8_t channels[16] = {0, 0, 0, 128, 4,  4,  4,  128,
                                                                8, 8, 8, 128, 12, 12, 12, 128};
        const auto places = hn::LoadDup128(tag, channels);
        const auto toChannels = [&](Ints values) HWY_ATTR {
            return bytesAtPlaces(hn::BitCast(tag, values), places);
        };
        const auto bytes = hn::SaturatedAdd(hn::LoadU(tag, pixels), toChannels(change.added));
        hn::StoreU(hn::SaturatedSub(bytes, toChannels(change.taken)), tag, pixels);
        return;
    }
#endif
    HWY_ALIGN float numbers[HWY_LANES(float)];
    hn::Store(grain.of(sums), FloatTag(), numbers);
    for (std::size_t i = 0; i < hn::Lanes(FloatTag()); ++i) {
        for (std::size_t c = 4 * i; c < 4 * i + 3; ++c) {
            pixels[c] = clampToByte(static_cast<float>(pixels[c]) + numbers[i]);
        }
    }
}

void addGrainInPlace(std::uint8_t* pixels, std::size_t count, std::size_t firstPixel, float scale) {
    const Grain grain(scale);
    Sums sumsOfPixels(firstPixel);
    const std::size_t vector = hn::Lanes(StateTag());
    std::size_t i = 0;
    for (; i + vector <= count; i += vector) {
        addToPixels(grain, sumsOfPixels.next(), pixels + 4 * i);
    }
    std::uint8_t rest[4 * HWY_LANES(std::uint32_t)] = {};
    std::memcpy(rest, pixels + 4 * i, 4 * (count - i));
    addToPixels(grain, sumsOfPixels.next(), rest);
    std::memcpy(pixels + 4 * i, rest, 4 * (count - i));
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(addGrain);
HWY_EXPORT(addGrainInPlace);

namespace {

void addGrainTo(const RawWalk& walk, float scale) {
    if (walk.channels == 0) return;
    if (walk.step == 4) {
        forEachShare(walk, [&](std::size_t begin, std::size_t end) {
            HWY_DYNAMIC_DISPATCH(addGrainInPlace)
            (walk.first + 4 * begin, end - begin, begin, scale);
        });
        return;
    }
    changeRuns(walk, [&](std::size_t first, PixelSpan& span) {
        HWY_DYNAMIC_DISPATCH(addGrain)(span, walk.channels, first, scale);
    });
}

}  // namespace

}  // namespace keladjust

CxImage* addNoiseFilter(CxImage* image, float amount, float size) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        if (amount == 0.0f || size == 0.0f) return;
        keladjust::addGrainTo(keladjust::rawWalkOf(picture), size / 100.0f * (amount / 100.0f));
    });
}

#endif
