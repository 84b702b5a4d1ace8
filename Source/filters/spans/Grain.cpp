// Grain over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/Grain.cpp"
#include <hwy/foreach_target.h>

#include <array>

#include "filters/GrainGenerator.h"
#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

using WordTag = hn::RebindToUnsigned<FloatTag>;
using Words = hn::Vec<WordTag>;

HWY_INLINE Words take(Steps steps, Words states) {
    const WordTag tag;
    return hn::Add(hn::Mul(states, hn::Set(tag, steps.factor)), hn::Set(tag, steps.addend));
}

// The sum of each pixel's last four draws, from the generator's state before the pixel.
HWY_INLINE Words sumOfDraws(Words states) {
    const auto draw = [states](std::uint64_t number) HWY_ATTR {
        return hn::And(take(repeated(oneDraw, number), states), hn::Set(WordTag(), 0x7FFF0000));
    };
    // Two draws fit side by side above bit 15, four do not.
    return hn::Add(hn::ShiftRight<16>(hn::Add(draw(2), draw(3))),
                   hn::ShiftRight<16>(hn::Add(draw(4), draw(5))));
}

// Sums of four draws as numbers of mean 0 and variance 1: sqrt(3) / 32767 and 2 sqrt(3).
HWY_INLINE Floats standardised(Words sums) {
    return throughDouble(hn::BitCast(IntTag(), sums), [](Doubles sum) HWY_ATTR {
        return hn::Sub(hn::Mul(sum, constant(5.28596089837e-5)), constant(3.46410161514));
    });
}

void addGrain(PixelSpan& span, std::size_t channels, std::size_t firstPixel, float scale) {
    const WordTag tag;
    const std::size_t lanes = hn::Lanes(tag);
    HWY_ALIGN std::array<std::uint32_t, HWY_LANES(std::uint32_t)> first;
    first[0] = repeated(oneDraw, drawsPerPixel * firstPixel)(grainSeed);
    for (std::size_t i = 1; i < lanes; ++i) {
        first[i] = repeated(oneDraw, drawsPerPixel)(first[i - 1]);
    }
    Words states = hn::Load(tag, first.data());
    const Steps toNextVector = repeated(oneDraw, drawsPerPixel * lanes);

    std::uint8_t* const channelLanes[] = {span.blue, span.green, span.red};
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Floats grain =
            hn::Mul(hn::Mul(standardised(sumOfDraws(states)), constant(scale)), constant(127.0f));
        states = take(toNextVector, states);
        for (std::size_t c = 0; c < channels; ++c) {
            std::uint8_t* const lane = channelLanes[c] + i;
            storeClamped(clampToBytes(hn::Add(loadFloats(lane), grain)), lane);
        }
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(addGrain);

void spans::addGrain(PixelSpan& span, std::size_t channels, std::size_t firstPixel, float scale) {
    HWY_DYNAMIC_DISPATCH(addGrain)(span, channels, firstPixel, scale);
}

}  // namespace keladjust
#endif
