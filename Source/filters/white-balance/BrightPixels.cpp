// Which pixels of a span are bright.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/white-balance/BrightPixels.cpp"
#include <hwy/foreach_target.h>

#include "filters/white-balance/BrightPixels.h"

#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using SumTag = hn::ScalableTag<std::uint16_t>;
using ByteTag = hn::Rebind<std::uint8_t, SumTag>;

std::size_t placesOfBright(const PixelSpan& span, unsigned leastSum, std::uint16_t* places) {
    const SumTag tag;
    const auto least = hn::Set(tag, static_cast<std::uint16_t>(leastSum));
    const std::size_t vector = hn::Lanes(tag);
    HWY_ALIGN std::uint16_t sums[HWY_LANES(std::uint16_t)];
    std::size_t count = 0;
    for (std::size_t i = 0; i < span.count; i += vector) {
        const auto channel = [&](const std::uint8_t* lane) HWY_ATTR {
            return hn::PromoteTo(tag, hn::Load(ByteTag(), lane + i));
        };
        const auto sum =
            hn::Add(hn::Add(channel(span.red), channel(span.green)), channel(span.blue));
        if (hn::AllFalse(tag, hn::Eq(hn::Max(sum, least), sum))) continue;
        hn::Store(sum, tag, sums);
        const std::size_t inSpan = std::min(vector, span.count - i);
        for (std::size_t k = 0; k < inSpan; ++k) {
            // Without a branch, which would be predicted wrongly too often.
            places[count] = static_cast<std::uint16_t>(i + k);
            count += sums[k] >= leastSum ? 1 : 0;
        }
    }
    return count;
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(placesOfBright);

std::size_t placesOfBright(const PixelSpan& span, unsigned leastSum, std::uint16_t* places) {
    return HWY_DYNAMIC_DISPATCH(placesOfBright)(span, leastSum, places);
}

}  // namespace keladjust
#endif
