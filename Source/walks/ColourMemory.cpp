// A memory of colours, and pixels looked up there many at a time.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "walks/ColourMemory.cpp"
#include <hwy/foreach_target.h>

#include "walks/ColourMemory.h"

#include <hwy/highway.h>

#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using WordTag = hn::CappedTag<std::uint32_t, PackedSpan::block>;
using IntTag = hn::RebindToSigned<WordTag>;
using Words = hn::Vec<WordTag>;

HWY_INLINE Words constant(std::uint32_t value) {
    return hn::Set(WordTag(), value);
}

HWY_INLINE Words masked(Words bits, std::uint32_t mask) {
    return hn::And(bits, constant(mask));
}

// Where colours, 0xRRGGBB, may be known, and what stands there above the changed colour if they
// are.
struct Places {
    Words index;
    Words label;
};

// Grain is mostly lightness, with which the channels rise and fall together: colours of a line have
// the distances of red and blue from green in common and all but four bits of green. Those 20 bits,
// moved to the top and multiplied by an odd number, which loses none of them, make line and label.
// Of the numbers that are usual for it this one brings the fewest colours of photographs together.
class Hashing {
public:
    static constexpr unsigned lineBits = 4;
    static constexpr unsigned hashedBits = 20;

    explicit Hashing(unsigned placeBits)
        : lineShift_(static_cast<int>(32 + lineBits - placeBits)),
          labelMask_((std::uint32_t{1} << (lineBits + hashedBits - placeBits)) - 1) {}

    HWY_INLINE Places operator()(Words colours) const {
        const Words green = masked(colours, 0xFF00);
        const Words red = hn::Sub(colours, hn::ShiftLeft<8>(green));
        const Words blue = hn::Sub(colours, hn::ShiftRight<8>(green));
        const Words together = hn::Or(
            hn::ShiftLeft<8>(masked(red, 0xFF0000)),
            hn::Or(hn::ShiftLeft<8>(masked(green, 0xF000)), hn::ShiftLeft<12>(masked(blue, 0xFF))));
        const Words hash = hn::Mul(together, constant(0x7FEB352D));
        const Words line = hn::ShiftRightSame(hash, lineShift_);
        const Words label = masked(hn::ShiftRight<32 - hashedBits>(hash), labelMask_);
        return {hn::Or(hn::ShiftLeft<lineBits>(line), masked(hn::ShiftRight<8>(colours), 0xF)),
                hn::Or(label, constant(0x80))};
    }

private:
    int lineShift_;
    std::uint32_t labelMask_;
};

// Of pixels that may lie at any address.
#if HWY_TARGET == HWY_SCALAR
HWY_INLINE Words loadPixels(const std::uint8_t* pixels) {
    std::uint32_t pixel;
    std::memcpy(&pixel, pixels, sizeof pixel);
    return constant(pixel);
}
HWY_INLINE void storePixels(Words values, std::uint8_t* pixels) {
    const std::uint32_t pixel = hn::GetLane(values);
    std::memcpy(pixels, &pixel, sizeof pixel);
}
#else
using ByteTag = hn::Repartition<std::uint8_t, WordTag>;

HWY_INLINE Words loadPixels(const std::uint8_t* pixels) {
    return hn::BitCast(WordTag(), hn::LoadU(ByteTag(), pixels));
}
HWY_INLINE void storePixels(Words values, std::uint8_t* pixels) {
    hn::StoreU(hn::BitCast(ByteTag(), values), ByteTag(), pixels);
}
#endif

HWY_INLINE Words load(const ColourMemory::Word* words, Words places) {
#if HWY_TARGET <= HWY_AVX2
    // The processor reads each aligned word whole.
    const auto* const memory = reinterpret_cast<const std::uint32_t*>(words);
    return hn::GatherIndex(WordTag(), memory, hn::BitCast(IntTag(), places));
#else
    HWY_ALIGN std::uint32_t lanes[PackedSpan::block];
    hn::Store(places, WordTag(), lanes);
    for (std::size_t i = 0; i < hn::Lanes(WordTag()); ++i) {
        lanes[i] = words[lanes[i]].load(std::memory_order_relaxed);
    }
    return hn::Load(WordTag(), lanes);
#endif
}

// Puts the lanes of a mask side by side at the beginning of vectors.
#if HWY_TARGET == HWY_AVX2
// For all eight bits of a mask the places of those that are set. hn::Compress() has them in 32 bits
// and eight shifts, which GCC copies to the stack each time.
struct SetBits {
    std::uint8_t places[256][8] = {};
};
constexpr SetBits setBits = [] {
    SetBits all;
    for (unsigned bits = 0; bits < 256; ++bits) {
        std::size_t count = 0;
        for (std::uint8_t place = 0; place < 8; ++place) {
            if ((bits >> place & 1) != 0) all.places[bits][count++] = place;
        }
    }
    return all;
}();

class Compressing {
public:
    explicit HWY_INLINE Compressing(hn::Mask<WordTag> mask)
        : count_(hn::CountTrue(WordTag(), mask)) {
        std::uint8_t bits[8];
        hn::StoreMaskBits(WordTag(), mask, bits);
        const hn::Rebind<std::uint8_t, WordTag> byteTag;
        places_ = hn::PromoteTo(WordTag(), hn::LoadU(byteTag, setBits.places[bits[0]]));
    }
    HWY_INLINE Words operator()(Words lanes) const {
        return hn::TableLookupLanes(lanes, hn::IndicesFromVec(WordTag(), places_));
    }
    HWY_INLINE std::size_t count() const { return count_; }

private:
    std::size_t count_;
    Words places_;
};
#else
class Compressing {
public:
    explicit HWY_INLINE Compressing(hn::Mask<WordTag> mask) : mask_(mask) {}
    HWY_INLINE Words operator()(Words lanes) const { return hn::Compress(lanes, mask_); }
    HWY_INLINE std::size_t count() const { return hn::CountTrue(WordTag(), mask_); }

private:
    hn::Mask<WordTag> mask_;
};
#endif

// Changes the pixels that are known and puts the others together with their places in the span.
std::size_t recall(const ColourMemory::Word* words, unsigned placeBits, const PackedSpan& span,
                   std::uint32_t* unknown, std::uint32_t* places) {
    const WordTag tag;
    const Hashing placesOf(placeBits);
    const Words lanes = hn::Iota(tag, 0);
    std::size_t count = 0;
    for (std::size_t i = 0; i < span.count; i += hn::Lanes(tag)) {
        std::uint8_t* const pixels = span.pixels + 4 * i;
        const Words before = loadPixels(pixels);
        const Places place = placesOf(before);
        const Words word = load(words, place.index);
        const auto isUnknown = hn::Ne(hn::ShiftRight<24>(word), place.label);
        const Words changed = hn::Or(masked(word, 0xFFFFFF), masked(before, 0xFF000000));
        storePixels(hn::IfThenElse(isUnknown, before, changed), pixels);
        // Whether a vector has unknown colours is hard to foretell: none asks.
        const Words at = hn::Add(lanes, constant(static_cast<std::uint32_t>(i)));
        const Compressing compressed(isUnknown);
        hn::StoreU(compressed(at), tag, places + count);
        hn::StoreU(compressed(before), tag, unknown + count);
        count += compressed.count();
    }
    // The last vector may have run past the pixels that count.
    while (count > 0 && places[count - 1] >= span.count) --count;
    return count;
}

void remember(ColourMemory::Word* words, unsigned placeBits, const std::uint32_t* colours,
              const std::uint8_t* changed, std::size_t count) {
    const WordTag tag;
    const Hashing placesOf(placeBits);
    HWY_ALIGN std::uint32_t indices[PackedSpan::block];
    HWY_ALIGN std::uint32_t known[PackedSpan::block];
    for (std::size_t i = 0; i < count; i += hn::Lanes(tag)) {
        const Places place = placesOf(hn::LoadU(tag, colours + i));
        const Words after = loadPixels(changed + 4 * i);
        hn::Store(place.index, tag, indices);
        hn::Store(hn::Or(hn::ShiftLeft<24>(place.label), masked(after, 0xFFFFFF)), tag, known);
        const std::size_t lanes = HWY_MIN(hn::Lanes(tag), count - i);
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            words[indices[lane]].store(known[lane], std::memory_order_relaxed);
        }
    }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include <algorithm>
#include <bit>
#include <new>

#include "platform/LargePages.h"

namespace keladjust {

namespace {

// Labels have room for the colours that share a place among so many; more places would take longer
// to come from memory than to learn anew.
constexpr unsigned fewestBits = 17;
constexpr unsigned mostBits = 21;

}  // namespace

HWY_EXPORT(recall);
HWY_EXPORT(remember);

void runInTurn(PixelLayout layout, std::span<const PixelKernel* const> kernels, PackedSpan& span) {
    for (const PixelKernel* kernel : kernels) {
        if (kernel != kernels.front()) roundTrip(layout, span);
        kernel->run(span);
    }
}

// Zeros that the system gives are no memory before something is written among them.
ColourMemory::ColourMemory(std::size_t pixels)
    : placeBits_(
          std::clamp(static_cast<unsigned>(std::bit_width(pixels / 2)), fewestBits, mostBits)),
      words_(static_cast<Word*>(std::calloc(std::size_t{1} << placeBits_, sizeof(Word)))) {
    static_assert(sizeof(Word) == sizeof(std::uint32_t) && Word::is_always_lock_free);
    if (words_ == nullptr) throw std::bad_alloc();
    platform::preferLargePages(words_.get(), sizeof(Word) << placeBits_);
}

bool ColourMemory::pays(std::span<const PixelKernel* const> kernels) {
    constexpr unsigned least = 5;
    unsigned effort = 0;
    for (const PixelKernel* kernel : kernels) effort += kernel->effort();
    return effort >= least;
}

RememberingKernels::RememberingKernels(PixelLayout layout,
                                       std::span<const PixelKernel* const> kernels,
                                       ColourMemory& memory, RememberingKernels* last)
    : layout_(layout), kernels_(kernels), memory_(memory), last_(last) {}

void RememberingKernels::run(PackedSpan& span) {
    if (spansToPass_ > 0) {
        --spansToPass_;
        runThrough(span);
        return;
    }
    unknown_ = HWY_DYNAMIC_DISPATCH(recall)(memory_.words(), memory_.placeBits(), span,
                                            colours_.data(), places_.data());
    // Where most colours are new, as in noise, it is not worth asking for each span, and the less
    // so the longer that lasts.
    constexpr unsigned longest = 15;
    pause_ = 4 * unknown_ > 3 * span.count ? std::min(2 * pause_ + 1, longest) : 0;
    spansToPass_ = pause_;
    if (unknown_ > 0) learn(span);
}

void RememberingKernels::runThrough(PackedSpan& span) {
    runInTurn(layout_, kernels_, span);
    if (last_ == nullptr) return;
    roundTrip(layout_, span);
    last_->run(span);
}

void RememberingKernels::learn(PackedSpan& span) {
    std::memcpy(learning_.bytes, colours_.data(), 4 * unknown_);
    PackedSpan together;
    together.count = unknown_;
    together.pixels = learning_.bytes;
    runThrough(together);
    for (std::size_t i = 0; i < unknown_; ++i) {
        std::uint32_t changed;
        std::memcpy(&changed, learning_.bytes + 4 * i, sizeof changed);
        std::memcpy(span.pixels + 4 * std::size_t{places_[i]}, &changed, sizeof changed);
    }
    HWY_DYNAMIC_DISPATCH(remember)
    (memory_.words(), memory_.placeBits(), colours_.data(), learning_.bytes, unknown_);
}

}  // namespace keladjust

#endif
