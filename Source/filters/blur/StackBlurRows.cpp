// The running sums of Stack Blur. From one sample to the next a sum grows by a difference, and the
// difference by the sample that comes within reach, less twice the middle one, plus the one that
// leaves: that is all there is to a triangle of weights.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/blur/StackBlurRows.cpp"
#include <hwy/foreach_target.h>

#include "filters/blur/StackBlurRows.h"

#include <hwy/cache_control.h>

#include <algorithm>
#include <span>

#include "arithmetic/Rounding.h"
#include "walks/RowVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

// Byte by byte: what the vectors below do for many at a time.

struct Sums {
    std::uint32_t sum = 0;
    std::int32_t difference = 0;

    void advance(int incoming, int middle, int outgoing) {
        difference += incoming - 2 * middle + outgoing;
        sum += static_cast<std::uint32_t>(difference);
    }

    // A flat line of 255 has the largest sum there is, and its product with the multiplier comes
    // out just below 2^32 and, shifted, as 255: nothing overflows.
    std::uint8_t blurred(StackBlurScale scale, std::uint8_t limit) const {
        return std::min(static_cast<std::uint8_t>(sum * scale.multiplier >> scale.shift), limit);
    }
};

bool isAlpha(std::size_t i, bool pixelsOfFour) {
    return pixelsOfFour && i % 4 == 3;
}

// Colour of premultiplied pixels never exceeds alpha.
std::uint8_t limitOf(const std::uint8_t* bytes, std::size_t i, bool pixelsOfFour) {
    return pixelsOfFour ? bytes[i | 3] : std::uint8_t{255};
}

// Blurs the samples from `first` on, before and behind which the end samples are repeated. The
// sample that no sum needs any more makes room for a result, so results begin radius + 1 samples
// earlier.
void blurTile(std::uint8_t* first, std::size_t width, bool pixelsOfFour, std::size_t radius) {
    const StackBlurScale scale = stackBlurScale(static_cast<unsigned>(radius));
    const std::size_t reach = (radius + 1) * tileBytes;
    for (std::size_t lane = 0; lane < tileBytes; ++lane) {
        // As far before the line as only its first sample is within reach.
        Sums sums{static_cast<std::uint32_t>((radius + 1) * (radius + 1) * first[lane]), 0};
        std::uint8_t* sample = first - radius * tileBytes;
        for (std::size_t i = 0; i < radius + width; ++i, sample += tileBytes) {
            const std::uint8_t outgoing = sample[lane - reach];
            if (i >= radius) {
                sample[lane - reach] =
                    isAlpha(lane, pixelsOfFour)
                        ? sample[lane]
                        : sums.blurred(scale, limitOf(sample, lane, pixelsOfFour));
            }
            sums.advance(sample[lane + reach], sample[lane], outgoing);
        }
    }
}

void stackBlurAcross(std::span<const BlurStep> steps, std::size_t bytes, std::size_t pixelBytes,
                     std::size_t radius, float factor, std::uint8_t* state) {
    static_assert(sizeof(Sums) <= blurStateFactor);
    const StackBlurScale scale = stackBlurScale(static_cast<unsigned>(radius));
    const bool pixelsOfFour = pixelBytes == 4;
    for (std::size_t i = 0; i < bytes; ++i) {
        if (isAlpha(i, pixelsOfFour)) continue;
        Sums sums;
        std::memcpy(&sums, state + i * blurStateFactor, sizeof sums);
        for (const BlurStep& step : steps) {
            if (step.target != nullptr) {
                const float sharp = step.target[i];
                const std::uint8_t blurred =
                    sums.blurred(scale, limitOf(step.middle, i, pixelsOfFour));
                step.target[i] =
                    i < step.pushed ? clampToByte((sharp - blurred) * factor + sharp) : blurred;
            }
            sums.advance(step.incoming[i], step.middle[i], step.outgoing[i]);
        }
        std::memcpy(state + i * blurStateFactor, &sums, sizeof sums);
    }
}

#else

// The differences of sums: words up to the radius whose differences fit them, quads beyond.
template <bool pixelsOfFour, bool wide>
struct Differences {
    WordPair words;
    static HWY_INLINE Differences zero() {
        const Words none = hn::Zero(WordTag());
        return {{none, none}};
    }
    HWY_INLINE Places<pixelsOfFour> grownBy(const WordPair& growth) {
        words = {hn::Add(words.even, growth.even), hn::Add(words.odd, growth.odd)};
        return placesOf<pixelsOfFour>(words);
    }
};
template <bool pixelsOfFour>
struct Differences<pixelsOfFour, true> {
    Places<pixelsOfFour> quads;
    static HWY_INLINE Differences zero() { return {placesOf<pixelsOfFour>(hn::Zero(RowTag()))}; }
    HWY_INLINE const Places<pixelsOfFour>& grownBy(const WordPair& growth) {
        const Places<pixelsOfFour> places = placesOf<pixelsOfFour>(growth);
        for (std::size_t c = 0; c < places.count; ++c) {
            quads.at[c] = hn::Add(quads.at[c], places.at[c]);
        }
        return quads;
    }
};

template <bool pixelsOfFour, bool wide>
struct Sums {
    Places<pixelsOfFour> sums;
    Differences<pixelsOfFour, wide> differences;

    static HWY_INLINE Sums zero() {
        return {placesOf<pixelsOfFour>(hn::Zero(RowTag())),
                Differences<pixelsOfFour, wide>::zero()};
    }

    HWY_INLINE void advance(Bytes incoming, Bytes middle, Bytes outgoing) {
        const WordPair in = toWords(incoming);
        const WordPair mid = toWords(middle);
        const WordPair out = toWords(outgoing);
        const auto growth = [](Words i, Words m, Words o)
                                HWY_ATTR { return hn::Sub(hn::Add(i, o), hn::Add(m, m)); };
        const Places<pixelsOfFour> grown = differences.grownBy(
            {growth(in.even, mid.even, out.even), growth(in.odd, mid.odd, out.odd)});
        for (std::size_t c = 0; c < sums.count; ++c) sums.at[c] = hn::Add(sums.at[c], grown.at[c]);
    }

    // A flat line of 255 has the largest sum there is, and its product with the multiplier comes
    // out just below 2^32 and, shifted, as 255: nothing overflows. Colour of premultiplied pixels
    // never exceeds alpha.
    HWY_INLINE Places<pixelsOfFour> blurred(Quads multiplier, Bytes middle) const {
        const SignedQuads alpha =
            hn::BitCast(SignedQuadTag(), hn::ShiftRight<24>(hn::BitCast(QuadTag(), middle)));
        Places<pixelsOfFour> places = sums;
        for (std::size_t c = 0; c < places.count; ++c) {
            const Quads product = hn::Mul(hn::BitCast(QuadTag(), sums.at[c]), multiplier);
            places.at[c] = hn::BitCast(SignedQuadTag(), hn::ShiftRight<stackBlurShift>(product));
            if constexpr (pixelsOfFour) places.at[c] = hn::Min(places.at[c], alpha);
        }
        return places;
    }
};

HWY_INLINE Quads multiplierOf(std::size_t radius) {
    return held(hn::Set(QuadTag(), stackBlurMultiplier(static_cast<unsigned>(radius))));
}

// (sharp - blurred) * factor + sharp.
template <bool pixelsOfFour>
HWY_INLINE Places<pixelsOfFour> pushedAway(Bytes sharp, const Places<pixelsOfFour>& blurred,
                                           Floats factor) {
    Places<pixelsOfFour> places = placesOf<pixelsOfFour>(sharp);
    for (std::size_t c = 0; c < places.count; ++c) {
        const Floats distance = toFloats(hn::Sub(places.at[c], blurred.at[c]));
        places.at[c] = clampToBytes(hn::Add(hn::Mul(distance, factor), toFloats(places.at[c])));
    }
    return places;
}

using BlockTag = hn::Full128<std::uint8_t>;
using Block = hn::Vec<BlockTag>;

// Four pixels of three or four bytes, with the alpha of pixels without one, which limits nothing;
// and back. Of three bytes a pixel four bytes behind them are read and written, too.
template <std::size_t pixelBytes>
HWY_INLINE Block loadFour(const std::uint8_t* pixels) {
    const Block block = hn::LoadU(BlockTag(), pixels);
    if constexpr (pixelBytes == 4) return block;
    HWY_ALIGN static constexpr std::uint8_t places[16] = {0, 1, 2, noByte, 3, 4,  5,  noByte,
                                                          6, 7, 8, noByte, 9, 10, 11, noByte};
    HWY_ALIGN static constexpr std::uint8_t alpha[16] = {0, 0, 0, 255, 0, 0, 0, 255,
                                                         0, 0, 0, 255, 0, 0, 0, 255};
    return hn::Or(bytesAtPlaces(block, hn::Load(BlockTag(), places)), hn::Load(BlockTag(), alpha));
}
template <std::size_t pixelBytes>
HWY_INLINE void storeFour(Block block, std::uint8_t* pixels) {
    HWY_ALIGN static constexpr std::uint8_t places[16] = {
        0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, noByte, noByte, noByte, noByte};
    if constexpr (pixelBytes == 3) block = bytesAtPlaces(block, hn::Load(BlockTag(), places));
    hn::StoreU(block, BlockTag(), pixels);
}

// Pixels of four bytes, four by four: what lies side by side in the blocks `from(0..3)` stands
// below one another in those that `to(block, 0..3)` gets.
template <class From, class To>
HWY_INLINE void turnFour(From from, To to) {
    const hn::Full128<std::uint32_t> tag;
    const hn::Full128<std::uint64_t> pairTag;
    const auto at = [&](std::size_t i) HWY_ATTR { return hn::BitCast(tag, from(i)); };
    const auto put = [&](auto pixels, std::size_t i)
                         HWY_ATTR { to(hn::BitCast(BlockTag(), pixels), i); };
    const auto a = at(0);
    const auto b = at(1);
    const auto c = at(2);
    const auto d = at(3);
    const auto lowerAB = hn::BitCast(pairTag, hn::InterleaveLower(tag, a, b));
    const auto lowerCD = hn::BitCast(pairTag, hn::InterleaveLower(tag, c, d));
    const auto upperAB = hn::BitCast(pairTag, hn::InterleaveUpper(tag, a, b));
    const auto upperCD = hn::BitCast(pairTag, hn::InterleaveUpper(tag, c, d));
    put(hn::InterleaveLower(pairTag, lowerAB, lowerCD), 0);
    put(hn::InterleaveUpper(pairTag, lowerAB, lowerCD), 1);
    put(hn::InterleaveLower(pairTag, upperAB, upperCD), 2);
    put(hn::InterleaveUpper(pairTag, upperAB, upperCD), 3);
}

// Bytes, sixteen by sixteen, from the runs at `from(0..15)` to those at `to(0..15)`. Dealing one
// half of the blocks between those of the other moves a bit of a byte's place from its number in
// the block to the block's number; four times make one the other.
template <class From, class To>
HWY_INLINE void turnSixteen(From from, To to) {
    const BlockTag tag;
    Block blocks[16];
    for (std::size_t i = 0; i < 16; ++i) blocks[i] = hn::LoadU(tag, from(i));
    for (int round = 0; round < 4; ++round) {
        Block dealt[16];
        for (std::size_t i = 0; i < 8; ++i) {
            dealt[2 * i] = hn::InterleaveLower(tag, blocks[i], blocks[i + 8]);
            dealt[2 * i + 1] = hn::InterleaveUpper(tag, blocks[i], blocks[i + 8]);
        }
        for (std::size_t i = 0; i < 16; ++i) blocks[i] = dealt[i];
    }
    for (std::size_t i = 0; i < 16; ++i) hn::StoreU(blocks[i], tag, to(i));
}

// Turn what whole blocks can, and return where the rest begins.

template <std::size_t pixelBytes>
std::size_t turnBlocksIntoTile(const std::uint8_t* const* rows, std::size_t width,
                               std::uint8_t* tile) {
    std::size_t x = 0;
    for (; (x + 4) * pixelBytes + (4 - pixelBytes) * 4 <= width * pixelBytes; x += 4) {
        for (std::size_t row = 0; row < tileRows(pixelBytes); row += 4) {
            turnFour([&](std::size_t i)
                         HWY_ATTR { return loadFour<pixelBytes>(rows[row + i] + pixelBytes * x); },
                     [&](Block block, std::size_t i) HWY_ATTR {
                         hn::StoreU(block, BlockTag(), tile + (x + i) * tileBytes + 4 * row);
                     });
        }
    }
    return x;
}
template <>
std::size_t turnBlocksIntoTile<1>(const std::uint8_t* const* rows, std::size_t width,
                                  std::uint8_t* tile) {
    std::size_t x = 0;
    for (; x + 16 <= width; x += 16) {
        for (std::size_t row = 0; row < tileRows(1); row += 16) {
            turnSixteen([&](std::size_t i) { return rows[row + i] + x; },
                        [&](std::size_t i) { return tile + (x + i) * tileBytes + row; });
        }
    }
    return x;
}

template <std::size_t pixelBytes>
std::size_t turnBlocksIntoRows(const std::uint8_t* tile, std::size_t width,
                               std::uint8_t* const* rows) {
    std::size_t x = 0;
    for (; (x + 4) * pixelBytes + (4 - pixelBytes) * 4 <= width * pixelBytes; x += 4) {
        for (std::size_t row = 0; row < tileRows(pixelBytes); row += 4) {
            turnFour(
                [&](std::size_t i) HWY_ATTR {
                    return hn::LoadU(BlockTag(), tile + (x + i) * tileBytes + 4 * row);
                },
                [&](Block block, std::size_t i)
                    HWY_ATTR { storeFour<pixelBytes>(block, rows[row + i] + pixelBytes * x); });
        }
    }
    return x;
}
template <>
std::size_t turnBlocksIntoRows<1>(const std::uint8_t* tile, std::size_t width,
                                  std::uint8_t* const* rows) {
    std::size_t x = 0;
    for (; x + 16 <= width; x += 16) {
        for (std::size_t row = 0; row < tileRows(1); row += 16) {
            turnSixteen([&](std::size_t i) { return tile + (x + i) * tileBytes + row; },
                        [&](std::size_t i) { return rows[row + i] + x; });
        }
    }
    return x;
}

// Differences of sums up to this radius fit a signed word.
constexpr std::size_t largestNarrowRadius = 127;

// Blurs the samples from `first` on, before and behind which the end samples are repeated. The
// sample that no sum needs any more makes room for a result, so results begin radius + 1 samples
// earlier.
template <bool pixelsOfFour, bool wide>
void blurTileOf(std::uint8_t* first, std::size_t width, std::size_t radius) {
    const Quads multiplier = multiplierOf(radius);
    const std::size_t reach = (radius + 1) * tileBytes;
    const SignedQuads weights =
        hn::Set(SignedQuadTag(), static_cast<std::int32_t>((radius + 1) * (radius + 1)));
    for (std::size_t lane = 0; lane < tileBytes; lane += hn::Lanes(RowTag())) {
        // As far before the line as only its first sample is within reach.
        Sums<pixelsOfFour, wide> sums{placesOf<pixelsOfFour>(load(first + lane, Whole{})),
                                      Differences<pixelsOfFour, wide>::zero()};
        for (SignedQuads& sum : sums.sums.at) sum = hn::Mul(sum, weights);
        std::uint8_t* sample = first + lane - radius * tileBytes;
        for (std::size_t i = 0; i < radius; ++i, sample += tileBytes) {
            sums.advance(load(sample + reach, Whole{}), load(sample, Whole{}),
                         load(sample - reach, Whole{}));
        }
        for (std::size_t i = 0; i < width; ++i, sample += tileBytes) {
            const Bytes middle = load(sample, Whole{});
            const Bytes outgoing = load(sample - reach, Whole{});
            store(joined(sums.blurred(multiplier, middle), middle), sample - reach, Whole{});
            sums.advance(load(sample + reach, Whole{}), middle, outgoing);
        }
    }
}

void blurTile(std::uint8_t* first, std::size_t width, bool pixelsOfFour, std::size_t radius) {
    if (radius <= largestNarrowRadius) {
        (pixelsOfFour ? blurTileOf<true, false> : blurTileOf<false, false>)(first, width, radius);
    } else {
        (pixelsOfFour ? blurTileOf<true, true> : blurTileOf<false, true>)(first, width, radius);
    }
}

// A column of vectors meets as many rows as there are steps, four times, more streams than the
// processor prefetches by itself: it is told of a line of each some columns ahead.
HWY_INLINE void prefetch(std::span<const BlurStep> steps, std::size_t i) {
    constexpr std::size_t line = 64;
    constexpr std::size_t ahead = 3 * line;
    if (i % line != 0) return;
    for (const BlurStep& step : steps) {
        hwy::Prefetch(step.incoming + i + ahead);
        hwy::Prefetch(step.middle + i + ahead);
        hwy::Prefetch(step.outgoing + i + ahead);
        if (step.target != nullptr) hwy::Prefetch(step.target + i + ahead);
    }
}

template <bool pixelsOfFour, bool wide>
void blurColumns(std::span<const BlurStep> steps, std::size_t bytes, std::size_t radius,
                 float factor, std::uint8_t* state) {
    using Column = Sums<pixelsOfFour, wide>;
    static_assert(sizeof(Column) <= blurStateFactor * sizeof(Bytes));
    const Quads multiplier = multiplierOf(radius);
    const Floats factors = held(hn::Set(FloatTag(), factor));
    const std::size_t vector = hn::Lanes(RowTag());
    forEachVector(bytes, [&](std::size_t i, auto extent) HWY_ATTR {
        prefetch(steps, i);
        Column sums = Column::zero();
        std::memcpy(&sums, state + i * blurStateFactor, sizeof sums);
        for (const BlurStep& step : steps) {
            const Bytes middle = load(step.middle + i, extent);
            if (step.target != nullptr) {
                const auto blurred = sums.blurred(multiplier, middle);
                const auto pushed = [&]() HWY_ATTR {
                    const Bytes sharp = load(step.target + i, extent);
                    return joined(pushedAway(sharp, blurred, factors), middle);
                };
                Bytes out;
                if (i + vector <= step.pushed) {
                    out = pushed();
                } else {
                    out = joined(blurred, middle);
                    if (i < step.pushed) {
                        out = hn::IfThenElse(hn::FirstN(RowTag(), step.pushed - i), pushed(), out);
                    }
                }
                store(out, step.target + i, extent);
            }
            sums.advance(load(step.incoming + i, extent), middle, load(step.outgoing + i, extent));
        }
        std::memcpy(state + i * blurStateFactor, &sums, sizeof sums);
    });
}

void stackBlurAcross(std::span<const BlurStep> steps, std::size_t bytes, std::size_t pixelBytes,
                     std::size_t radius, float factor, std::uint8_t* state) {
    if (radius <= largestNarrowRadius) {
        (pixelBytes == 4 ? blurColumns<true, false>
                         : blurColumns<false, false>)(steps, bytes, radius, factor, state);
    } else {
        (pixelBytes == 4 ? blurColumns<true, true> : blurColumns<false, true>)(steps, bytes, radius,
                                                                               factor, state);
    }
}

#endif

// Rows to samples of a tile and back.

void turnIntoTile(const std::uint8_t* const* rows, std::size_t width, std::size_t pixelBytes,
                  std::uint8_t* tile) {
    constexpr std::size_t sample = tileBytes;
    std::size_t x = 0;
#if HWY_TARGET != HWY_SCALAR
    if (pixelBytes == 4) x = turnBlocksIntoTile<4>(rows, width, tile);
    if (pixelBytes == 3) x = turnBlocksIntoTile<3>(rows, width, tile);
    if (pixelBytes == 1) x = turnBlocksIntoTile<1>(rows, width, tile);
#endif
    const std::size_t slot = tileBytes / tileRows(pixelBytes);
    for (; x < width; ++x) {
        for (std::size_t row = 0; row < tileRows(pixelBytes); ++row) {
            std::uint8_t* const pixel = tile + x * sample + slot * row;
            // The alpha of pixels without one, which limits nothing.
            pixel[slot - 1] = 255;
            std::memcpy(pixel, rows[row] + x * pixelBytes, pixelBytes);
        }
    }
}

void turnIntoRows(const std::uint8_t* tile, std::size_t width, std::size_t pixelBytes,
                  std::uint8_t* const* rows) {
    constexpr std::size_t sample = tileBytes;
    std::size_t x = 0;
#if HWY_TARGET != HWY_SCALAR
    if (pixelBytes == 4) x = turnBlocksIntoRows<4>(tile, width, rows);
    if (pixelBytes == 3) x = turnBlocksIntoRows<3>(tile, width, rows);
    if (pixelBytes == 1) x = turnBlocksIntoRows<1>(tile, width, rows);
#endif
    const std::size_t slot = tileBytes / tileRows(pixelBytes);
    for (; x < width; ++x) {
        for (std::size_t row = 0; row < tileRows(pixelBytes); ++row) {
            std::memcpy(rows[row] + x * pixelBytes, tile + x * sample + slot * row, pixelBytes);
        }
    }
}

void stackBlurAlong(const std::uint8_t* const* rows, std::size_t width, std::size_t pixelBytes,
                    std::size_t radius, std::uint8_t* tile, std::uint8_t* const* blurred) {
    const std::size_t before = 2 * radius + 1;
    std::uint8_t* const first = tile + before * tileBytes;
    std::uint8_t* const end = first + width * tileBytes;
    turnIntoTile(rows, width, pixelBytes, first);
    for (std::uint8_t* sample = tile; sample < first; sample += tileBytes) {
        std::memcpy(sample, first, tileBytes);
    }
    for (std::size_t i = 0; i <= radius; ++i) {
        std::memcpy(end + i * tileBytes, end - tileBytes, tileBytes);
    }
    blurTile(first, width, pixelBytes != 1, radius);
    turnIntoRows(first - (radius + 1) * tileBytes, width, pixelBytes, blurred);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(stackBlurAlong);
HWY_EXPORT(stackBlurAcross);

void stackBlurAlong(const std::uint8_t* const* rows, std::size_t width, std::size_t pixelBytes,
                    std::size_t radius, std::uint8_t* tile, std::uint8_t* const* blurred) {
    HWY_DYNAMIC_DISPATCH(stackBlurAlong)(rows, width, pixelBytes, radius, tile, blurred);
}
void stackBlurAcross(std::span<const BlurStep> steps, std::size_t bytes, std::size_t pixelBytes,
                     std::size_t radius, float factor, std::uint8_t* state) {
    HWY_DYNAMIC_DISPATCH(stackBlurAcross)(steps, bytes, pixelBytes, radius, factor, state);
}

}  // namespace keladjust
#endif
