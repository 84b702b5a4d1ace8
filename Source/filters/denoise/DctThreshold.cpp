#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/denoise/DctThreshold.cpp"
#include <hwy/foreach_target.h>

#include "filters/denoise/DctThreshold.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cstring>

#include "platform/CallScope.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// One lane is one column position of a block. Multiplications and additions are never fused.
using FloatTag = hn::CappedTag<float, 16>;
using Floats = hn::Vec<FloatTag>;

// Column positions that go from row to row together: what they remember of eight rows fits the
// first-level cache. A multiple of every number of lanes.
constexpr std::size_t tileWidth = 32;
// A vector that begins inside the tile or among the seven pixels behind it ends before this.
constexpr std::size_t tileReach = tileWidth + 32;

HWY_INLINE Floats constant(float value) {
    return hn::Set(FloatTag(), value);
}

// The scales of coefficients 0..7 against the flow graph's: 1 and 1 / (sqrt(2) cos(k pi / 16)), the
// factor 1 / sqrt(8) that all have in common left out.
constexpr float scales[dctSize] = {1.0f, 0.72095982f, 0.76536686f, 0.85043009f,
                                   1.0f, 1.27275858f, 1.84775907f, 3.62450979f};
// That factor, for two transforms and their inverses, in the decimals of the transform's usual
// table, which make it a hair more than 1 / 64: less is lost when means are truncated.
constexpr auto commonScale = static_cast<float>(0.3535534 * 0.3535534 * 0.3535534 * 0.3535534);
// The squares of the scales, for a transform and its inverse in one.
constexpr float squaredScales[dctSize] = {1.0f, 0.51978306f, 0.58578644f, 0.72323135f,
                                          1.0f, 1.61991440f, 3.41421356f, 13.13707118f};

constexpr float cosPi4 = 0.70710678f;
constexpr float sinPi8 = 0.38268343f;
constexpr float sqrt2SinPi8 = 0.54119610f;
constexpr float sqrt2CosPi8 = 1.30656296f;

// The forward flow graph: eight samples in, eight unscaled coefficients out, in order.
HWY_INLINE void transform(Floats& x0, Floats& x1, Floats& x2, Floats& x3, Floats& x4, Floats& x5,
                          Floats& x6, Floats& x7) {
    const Floats sum07 = hn::Add(x0, x7);
    const Floats sum16 = hn::Add(x1, x6);
    const Floats sum25 = hn::Add(x2, x5);
    const Floats sum34 = hn::Add(x3, x4);
    const Floats difference07 = hn::Sub(x0, x7);
    const Floats difference16 = hn::Sub(x1, x6);
    const Floats difference25 = hn::Sub(x2, x5);
    const Floats difference34 = hn::Sub(x3, x4);

    const Floats outer = hn::Add(sum07, sum34);
    const Floats inner = hn::Add(sum16, sum25);
    const Floats outerTilt = hn::Sub(sum07, sum34);
    const Floats innerTilt = hn::Sub(sum16, sum25);
    const Floats evenTurn = hn::Mul(hn::Add(innerTilt, outerTilt), constant(cosPi4));
    x0 = hn::Add(outer, inner);
    x4 = hn::Sub(outer, inner);
    x2 = hn::Add(outerTilt, evenTurn);
    x6 = hn::Sub(outerTilt, evenTurn);

    const Floats low = hn::Add(difference34, difference25);
    const Floats middle = hn::Add(difference25, difference16);
    const Floats high = hn::Add(difference16, difference07);
    const Floats turn = hn::Mul(hn::Sub(low, high), constant(sinPi8));
    const Floats turnedLow = hn::Add(hn::Mul(low, constant(sqrt2SinPi8)), turn);
    const Floats turnedHigh = hn::Add(hn::Mul(high, constant(sqrt2CosPi8)), turn);
    const Floats turnedMiddle = hn::Mul(middle, constant(cosPi4));
    const Floats plus = hn::Add(difference07, turnedMiddle);
    const Floats minus = hn::Sub(difference07, turnedMiddle);
    x5 = hn::Add(minus, turnedLow);
    x3 = hn::Sub(minus, turnedLow);
    x1 = hn::Add(plus, turnedHigh);
    x7 = hn::Sub(plus, turnedHigh);
}

// The transposed flow graph: eight coefficients in, eight samples out.
HWY_INLINE void transposedTransform(Floats& x0, Floats& x1, Floats& x2, Floats& x3, Floats& x4,
                                    Floats& x5, Floats& x6, Floats& x7) {
    const Floats outer = hn::Add(x0, x4);
    const Floats inner = hn::Sub(x0, x4);
    const Floats innerTilt = hn::Mul(hn::Sub(x2, x6), constant(cosPi4));
    const Floats outerTilt = hn::Add(hn::Add(x2, x6), innerTilt);
    const Floats sum07 = hn::Add(outer, outerTilt);
    const Floats sum34 = hn::Sub(outer, outerTilt);
    const Floats sum16 = hn::Add(inner, innerTilt);
    const Floats sum25 = hn::Sub(inner, innerTilt);

    const Floats minus = hn::Add(x5, x3);
    const Floats turnedLow = hn::Sub(x5, x3);
    const Floats plus = hn::Add(x1, x7);
    const Floats turnedHigh = hn::Sub(x1, x7);
    const Floats middle = hn::Mul(hn::Sub(plus, minus), constant(cosPi4));
    const Floats turn = hn::Mul(hn::Add(turnedLow, turnedHigh), constant(sinPi8));
    const Floats low = hn::Add(hn::Mul(turnedLow, constant(sqrt2SinPi8)), turn);
    const Floats high = hn::Sub(hn::Mul(turnedHigh, constant(sqrt2CosPi8)), turn);
    const Floats difference34 = low;
    const Floats difference25 = hn::Add(low, middle);
    const Floats difference16 = hn::Add(middle, high);
    const Floats difference07 = hn::Add(hn::Add(plus, minus), high);

    x0 = hn::Add(sum07, difference07);
    x7 = hn::Sub(sum07, difference07);
    x1 = hn::Add(sum16, difference16);
    x6 = hn::Sub(sum16, difference16);
    x2 = hn::Add(sum25, difference25);
    x5 = hn::Sub(sum25, difference25);
    x3 = hn::Add(sum34, difference34);
    x4 = hn::Sub(sum34, difference34);
}

// Eight coefficients of one row for every column position of a tile.
struct alignas(64) TileRow {
    float coefficients[dctSize][tileWidth];
};

class TileFilter {
public:
    explicit TileFilter(const DctBand& band) : band_(band) {
        for (std::size_t k = 0; k < dctSize; ++k) {
            // The coefficients of a block are eight times too large here: the square of the factor
            // that the scales leave out.
            thresholds_[k] = 8.0f * band.threshold / scales[k];
        }
        std::memset(parts_, 0, sizeof parts_);
        std::memset(samples_, 0, sizeof samples_);
    }

    // Filters the columns from `column` on, as many as the tile and the plane have.
    void run(std::size_t column) {
        column_ = column;
        const std::size_t begin = band_.rows.begin();
        const std::size_t firstBlock = begin < dctHalo ? 0 : begin - dctHalo;
        for (std::size_t y = firstBlock; y < firstBlock + dctHalo; ++y) transformRow(y);
        std::memset(sums_, 0, sizeof sums_);
        for (std::size_t y = firstBlock; y < band_.rows.end(); ++y) {
            transformRow(y + dctHalo);
            filterBlocks(y);
            if (y >= begin) writeRow(y);
        }
    }

private:
    void transformRow(std::size_t y) {
        const FloatTag d;
        const std::size_t known = std::min(tileWidth + dctHalo, band_.width - column_);
        const std::uint8_t* const row = band_.rows.row(y) + column_;
        for (std::size_t i = 0; i < known; ++i) samples_[i] = static_cast<float>(row[i]);
        // Blocks that begin too far to the right read zeros; no pixel is made of them.
        std::fill(samples_ + known, samples_ + tileReach, 0.0f);

        auto& out = rows_[y % dctSize].coefficients;
        for (std::size_t i = 0; i < tileWidth; i += hn::Lanes(d)) {
            Floats x0 = hn::LoadU(d, samples_ + i);
            Floats x1 = hn::LoadU(d, samples_ + i + 1);
            Floats x2 = hn::LoadU(d, samples_ + i + 2);
            Floats x3 = hn::LoadU(d, samples_ + i + 3);
            Floats x4 = hn::LoadU(d, samples_ + i + 4);
            Floats x5 = hn::LoadU(d, samples_ + i + 5);
            Floats x6 = hn::LoadU(d, samples_ + i + 6);
            Floats x7 = hn::LoadU(d, samples_ + i + 7);
            transform(x0, x1, x2, x3, x4, x5, x6, x7);
            hn::Store(x0, d, out[0] + i);
            hn::Store(hn::Mul(x1, constant(scales[1])), d, out[1] + i);
            hn::Store(hn::Mul(x2, constant(scales[2])), d, out[2] + i);
            hn::Store(hn::Mul(x3, constant(scales[3])), d, out[3] + i);
            hn::Store(x4, d, out[4] + i);
            hn::Store(hn::Mul(x5, constant(scales[5])), d, out[5] + i);
            hn::Store(hn::Mul(x6, constant(scales[6])), d, out[6] + i);
            hn::Store(hn::Mul(x7, constant(scales[7])), d, out[7] + i);
        }
    }

    HWY_INLINE Floats kept(Floats coefficient, std::size_t k) const {
        const auto small = hn::Lt(hn::Abs(coefficient), constant(thresholds_[k]));
        return hn::IfThenZeroElse(small, coefficient);
    }
    HWY_INLINE Floats keptScaled(Floats coefficient, std::size_t k) const {
        return hn::Mul(kept(coefficient, k), constant(squaredScales[k]));
    }

    // The blocks of rows y..y+7.
    void filterBlocks(std::size_t y) {
        const FloatTag d;
        for (std::size_t u = 0; u < dctSize; ++u) {
            const auto in = [&](std::size_t k) { return rows_[(y + k) % dctSize].coefficients[u]; };
            const auto out = [&](std::size_t k) {
                return sums_[(y + k) % dctSize].coefficients[u];
            };
            for (std::size_t i = 0; i < tileWidth; i += hn::Lanes(d)) {
                Floats x0 = hn::Load(d, in(0) + i);
                Floats x1 = hn::Load(d, in(1) + i);
                Floats x2 = hn::Load(d, in(2) + i);
                Floats x3 = hn::Load(d, in(3) + i);
                Floats x4 = hn::Load(d, in(4) + i);
                Floats x5 = hn::Load(d, in(5) + i);
                Floats x6 = hn::Load(d, in(6) + i);
                Floats x7 = hn::Load(d, in(7) + i);
                transform(x0, x1, x2, x3, x4, x5, x6, x7);
                x0 = kept(x0, 0);
                x1 = keptScaled(x1, 1);
                x2 = keptScaled(x2, 2);
                x3 = keptScaled(x3, 3);
                x4 = kept(x4, 4);
                x5 = keptScaled(x5, 5);
                x6 = keptScaled(x6, 6);
                x7 = keptScaled(x7, 7);
                transposedTransform(x0, x1, x2, x3, x4, x5, x6, x7);
                const auto add = [&](Floats x, std::size_t k) HWY_ATTR {
                    hn::Store(hn::Add(hn::Load(d, out(k) + i), x), d, out(k) + i);
                };
                add(x0, 0);
                add(x1, 1);
                add(x2, 2);
                add(x3, 3);
                add(x4, 4);
                add(x5, 5);
                add(x6, 6);
                hn::Store(x7, d, out(7) + i);  // the first block over its row
            }
        }
    }

    // Row y, over which all blocks have passed.
    void writeRow(std::size_t y) {
        const FloatTag d;
        const auto& in = sums_[y % dctSize].coefficients;
        for (std::size_t i = 0; i < tileWidth; i += hn::Lanes(d)) {
            const auto load = [&](std::size_t k) HWY_ATTR {
                return hn::Mul(hn::Load(d, in[k] + i), constant(scales[k] * commonScale));
            };
            Floats x0 = load(0);
            Floats x1 = load(1);
            Floats x2 = load(2);
            Floats x3 = load(3);
            Floats x4 = load(4);
            Floats x5 = load(5);
            Floats x6 = load(6);
            Floats x7 = load(7);
            transposedTransform(x0, x1, x2, x3, x4, x5, x6, x7);
            hn::Store(x0, d, parts_[0] + lead + i);
            hn::Store(x1, d, parts_[1] + lead + i);
            hn::Store(x2, d, parts_[2] + lead + i);
            hn::Store(x3, d, parts_[3] + lead + i);
            hn::Store(x4, d, parts_[4] + lead + i);
            hn::Store(x5, d, parts_[5] + lead + i);
            hn::Store(x6, d, parts_[6] + lead + i);
            hn::Store(x7, d, parts_[7] + lead + i);
        }

        // A pixel takes sample n from the column position n to its left, the leftmost first; those
        // of the tile before have left their sum.
        float* const carried = band_.carried + (y - band_.rows.begin()) * dctSize;
        alignas(64) float sums[tileReach] = {};
        if (column_ != 0) std::copy_n(carried, dctSize, sums);
        for (std::size_t i = 0; i < tileWidth + dctHalo; i += hn::Lanes(d)) {
            Floats sum = hn::Load(d, sums + i);
            for (std::size_t n = dctSize; n-- > 0;) {
                sum = hn::Add(sum, hn::LoadU(d, parts_[n] + lead + i - n));
            }
            hn::Store(sum, d, sums + i);
        }
        std::copy_n(sums + tileWidth, dctSize, carried);
        writePixels(y, sums);
    }

    void writePixels(std::size_t y, const float* sums) {
        const FloatTag d;
        const hn::RebindToSigned<FloatTag> ints;
        const hn::Rebind<std::uint8_t, FloatTag> bytes;
        const auto blocksAlong = [](std::size_t place) {
            return static_cast<float>(std::min(place + 1, dctSize));
        };
        alignas(64) float weights[tileWidth];
        for (std::size_t i = 0; i < tileWidth; ++i) {
            weights[i] = blocksAlong(column_ + i) * blocksAlong(y);
        }
        alignas(64) std::uint8_t pixels[tileWidth];
        for (std::size_t i = 0; i < tileWidth; i += hn::Lanes(d)) {
            const Floats mean = hn::Div(hn::Load(d, sums + i), hn::Load(d, weights + i));
            const Floats clamped = hn::Min(hn::Max(mean, constant(0.0f)), constant(255.0f));
            hn::Store(hn::DemoteTo(bytes, hn::ConvertTo(ints, clamped)), bytes, pixels + i);
        }
        const std::size_t count = std::min(tileWidth, band_.width - dctSize - column_);
        std::copy_n(pixels, count, band_.destination + y * band_.stride + column_);
    }

    // Room before the first column position of a tile for vectors that begin up to seven earlier.
    static constexpr std::size_t lead = 16;

    const DctBand& band_;
    std::size_t column_ = 0;
    float thresholds_[dctSize];
    alignas(64) float samples_[tileReach];
    TileRow rows_[dctSize];  // transforms of the last eight rows, each in its place modulo eight
    TileRow sums_[dctSize];  // sums over the blocks so far, likewise
    // Sample n of every column position; zeros before and behind.
    alignas(64) float parts_[dctSize][lead + tileReach];
};

void filterBand(const DctBand& band) {
    TileFilter filter(band);
    for (std::size_t column = 0; column < band.width - dctSize; column += tileWidth) {
        if (platform::checkpoint(column, band.width)) return;
        filter.run(column);
    }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(filterBand);

void filterBand(const DctBand& band) {
    HWY_DYNAMIC_DISPATCH(filterBand)(band);
}

}  // namespace keladjust
#endif
