#include "ImageFormat/Interleave.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ImageFormat/Interleave.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using ByteTag = hn::ScalableTag<std::uint8_t>;
using Bytes = hn::Vec<ByteTag>;

void deinterleave(const std::uint8_t* pixels, std::size_t step, std::size_t count,
                  std::uint8_t* first, std::uint8_t* second, std::uint8_t* third) {
    const ByteTag tag;
    const std::size_t vector = hn::Lanes(tag);
    const std::size_t inVectors = step <= 4 ? count : 0;
    std::size_t i = 0;
    for (; i + vector <= inVectors; i += vector) {
        Bytes a;
        Bytes b;
        Bytes c;
        if (step == 4) {
            Bytes unused;
            hn::LoadInterleaved4(tag, pixels + i * 4, a, b, c, unused);
        } else {
            hn::LoadInterleaved3(tag, pixels + i * 3, a, b, c);
        }
        hn::StoreU(a, tag, first + i);
        hn::StoreU(b, tag, second + i);
        hn::StoreU(c, tag, third + i);
    }
    for (; i < count; ++i) {
        first[i] = pixels[i * step];
        second[i] = pixels[i * step + 1];
        third[i] = pixels[i * step + 2];
    }
}

void interleave(const std::uint8_t* first, const std::uint8_t* second, const std::uint8_t* third,
                std::size_t step, std::size_t count, std::uint8_t* pixels) {
    const ByteTag tag;
    const std::size_t vector = hn::Lanes(tag);
    const std::size_t inVectors = step <= 4 ? count : 0;
    std::size_t i = 0;
    for (; i + vector <= inVectors; i += vector) {
        const Bytes a = hn::LoadU(tag, first + i);
        const Bytes b = hn::LoadU(tag, second + i);
        const Bytes c = hn::LoadU(tag, third + i);
        if (step == 4) {
            Bytes before[3];
            Bytes fourth;
            hn::LoadInterleaved4(tag, pixels + i * 4, before[0], before[1], before[2], fourth);
            hn::StoreInterleaved4(a, b, c, fourth, tag, pixels + i * 4);
        } else {
            hn::StoreInterleaved3(a, b, c, tag, pixels + i * 3);
        }
    }
    for (; i < count; ++i) {
        pixels[i * step] = first[i];
        pixels[i * step + 1] = second[i];
        pixels[i * step + 2] = third[i];
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(deinterleave);
HWY_EXPORT(interleave);

void deinterleave(const std::uint8_t* pixels, std::size_t step, std::size_t count,
                  std::uint8_t* first, std::uint8_t* second, std::uint8_t* third) {
    HWY_DYNAMIC_DISPATCH(deinterleave)(pixels, step, count, first, second, third);
}
void interleave(const std::uint8_t* first, const std::uint8_t* second, const std::uint8_t* third,
                std::size_t step, std::size_t count, std::uint8_t* pixels) {
    HWY_DYNAMIC_DISPATCH(interleave)(first, second, third, step, count, pixels);
}

}  // namespace keladjust
#endif
