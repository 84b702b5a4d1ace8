#include "ImageFormat/Interleave.h"

#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ImageFormat/Interleave.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "arithmetic/HeldVector-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

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

// Pixels of either size, as many as a vector has bytes.
struct PixelBytes {
    Bytes first;
    Bytes second;
    Bytes third;
    Bytes fourth;

    // GCC would make one that may not use the instructions which this file's code may use.
    HWY_INLINE PixelBytes() {}

    HWY_INLINE void load(const std::uint8_t* pixels, std::size_t step) {
        if (step == 4) {
            hn::LoadInterleaved4(ByteTag(), pixels, first, second, third, fourth);
        } else {
            hn::LoadInterleaved3(ByteTag(), pixels, first, second, third);
            fourth = hn::Zero(ByteTag());
        }
    }
    HWY_INLINE void store(std::uint8_t* pixels, std::size_t step) const {
        if (step == 4) {
            hn::StoreInterleaved4(first, second, third, fourth, ByteTag(), pixels);
        } else {
            hn::StoreInterleaved3(first, second, third, ByteTag(), pixels);
        }
    }
};

#if HWY_TARGET == HWY_SCALAR

std::size_t swapVectors(const std::uint8_t*, std::size_t, std::uint8_t*) {
    return 0;
}

#else

// Pixels of four with their first and their third byte exchanged, as many as make whole vectors;
// how many that are.
std::size_t swapVectors(const std::uint8_t* from, std::size_t count, std::uint8_t* to) {
    const hn::Repartition<std::uint32_t, ByteTag> tag;
    const auto staying = held(hn::Set(tag, 0xFF00FF00));
    std::size_t i = 0;
    for (; i + hn::Lanes(tag) <= count; i += hn::Lanes(tag)) {
        const auto pixels = hn::BitCast(tag, hn::LoadU(ByteTag(), from + 4 * i));
        const auto stay = hn::And(pixels, staying);
        const auto first = hn::ShiftRight<24>(hn::ShiftLeft<8>(pixels));
        const auto third = hn::ShiftRight<8>(hn::ShiftLeft<24>(pixels));
        const auto swapped = hn::Or(stay, hn::Or(first, third));
        hn::StoreU(hn::BitCast(ByteTag(), swapped), ByteTag(), to + 4 * i);
    }
    return i;
}

#endif

void convertPixels(const std::uint8_t* from, std::size_t fromStep, bool swaps, std::size_t count,
                   std::uint8_t* to, std::size_t toStep) {
    const std::size_t vector = hn::Lanes(ByteTag());
    std::size_t i = fromStep == 4 && toStep == 4 && swaps ? swapVectors(from, count, to) : 0;
    for (; i + vector <= count; i += vector) {
        PixelBytes pixels;
        pixels.load(from + i * fromStep, fromStep);
        if (swaps) std::swap(pixels.first, pixels.third);
        pixels.store(to + i * toStep, toStep);
    }
    for (; i < count; ++i) {
        const std::uint8_t* const pixel = from + i * fromStep;
        std::uint8_t* const converted = to + i * toStep;
        const std::uint8_t first = pixel[0];
        const std::uint8_t fourth = fromStep == 4 ? pixel[3] : std::uint8_t{0};
        converted[0] = swaps ? pixel[2] : first;
        converted[1] = pixel[1];
        converted[2] = swaps ? first : pixel[2];
        if (toStep == 4) converted[3] = fourth;
    }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(deinterleave);
HWY_EXPORT(interleave);
HWY_EXPORT(convertPixels);

void deinterleave(const std::uint8_t* pixels, std::size_t step, std::size_t count,
                  std::uint8_t* first, std::uint8_t* second, std::uint8_t* third) {
    HWY_DYNAMIC_DISPATCH(deinterleave)(pixels, step, count, first, second, third);
}
void interleave(const std::uint8_t* first, const std::uint8_t* second, const std::uint8_t* third,
                std::size_t step, std::size_t count, std::uint8_t* pixels) {
    HWY_DYNAMIC_DISPATCH(interleave)(first, second, third, step, count, pixels);
}

void packPixels(const std::uint8_t* pixels, std::size_t step, bool redFirst, std::size_t count,
                std::uint8_t* packed) {
    HWY_DYNAMIC_DISPATCH(convertPixels)(pixels, step, redFirst, count, packed, 4);
}
void unpackPixels(const std::uint8_t* packed, std::size_t step, bool redFirst, std::size_t count,
                  std::uint8_t* pixels) {
    HWY_DYNAMIC_DISPATCH(convertPixels)(packed, 4, redFirst, count, pixels, step);
}

}  // namespace keladjust
#endif
