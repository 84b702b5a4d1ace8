// Stack Blur (Mario Klingemann): a triangular kernel from running sums, the same work at every
// radius. Many lines are blurred together, one lane each, so that the sums are plain arrays: a
// stripe of columns as it lies in memory, a tile of rows turned on its side first.

#include "filters/StackBlur.h"

#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstring>

#include "ImageFormat/RawWalk.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

// Below this many pixels a thread costs more than it saves.
constexpr std::size_t pixelsPerThread = 1 << 15;

// Bytes side by side: sums and samples of a stripe stay in the second-level cache at any radius,
// and so does a tile of a usual width.
constexpr std::size_t stripeBytes = 512;
constexpr std::size_t tileBytes = 64;

bool blurs(std::size_t width, std::size_t height, std::size_t bytesPerPixel, int radius) {
    const bool knownPixels = bytesPerPixel == 1 || bytesPerPixel == 3 || bytesPerPixel == 4;
    return width > 0 && height > 0 && knownPixels && radius >= 1 && radius <= 254;
}

// Everything about the first sample: the line goes on with it to the left, and past its end with
// its last sample to the right.
void startSums(const std::uint8_t* __restrict first, std::uint32_t radius, std::size_t lanes,
               std::uint32_t* __restrict sum, std::uint32_t* __restrict entering,
               std::uint32_t* __restrict leaving) {
    const std::uint32_t weights = (radius + 1) * (radius + 2) / 2;
    for (std::size_t j = 0; j < lanes; ++j) {
        sum[j] = first[j] * weights;
        entering[j] = 0;
        leaving[j] = first[j] * (radius + 1);
    }
}

void addToSums(const std::uint8_t* __restrict sample, std::uint32_t weight, std::size_t lanes,
               std::uint32_t* __restrict sum, std::uint32_t* __restrict entering) {
    for (std::size_t j = 0; j < lanes; ++j) {
        sum[j] += sample[j] * weight;
        entering[j] += sample[j];
    }
}

// A flat line of 255 has the largest sum there is, and its product with the multiplier comes out
// just below 2^32 and, shifted, as 255: nothing overflows and no result needs a limit.
void scaleSums(const std::uint32_t* __restrict sum, StackBlurScale scale, std::size_t lanes,
               std::uint8_t* __restrict blurred) {
    for (std::size_t j = 0; j < lanes; ++j) {
        blurred[j] = static_cast<std::uint8_t>((sum[j] * scale.multiplier) >> scale.shift);
    }
}

// From one sample to the next: `next` moves from the entering side to the leaving one, `incoming`
// comes within reach, `outgoing` leaves it.
void advanceSums(const std::uint8_t* __restrict next, const std::uint8_t* __restrict incoming,
                 const std::uint8_t* __restrict outgoing, std::size_t lanes,
                 std::uint32_t* __restrict sum, std::uint32_t* __restrict entering,
                 std::uint32_t* __restrict leaving) {
    for (std::size_t j = 0; j < lanes; ++j) {
        sum[j] += entering[j] - leaving[j];
        entering[j] += std::uint32_t{incoming[j]} - next[j];
        leaving[j] += std::uint32_t{next[j]} - outgoing[j];
    }
}

// Colour of premultiplied pixels never exceeds alpha. Words, because bytes with gaps make no
// vectors.
void limitToAlpha(const std::uint8_t* pixels, std::size_t lanes, std::uint8_t* blurred) {
    constexpr std::size_t runBytes = 256;
    std::uint8_t limits[runBytes];
    for (std::size_t begin = 0; begin < lanes; begin += runBytes) {
        const std::size_t bytes = std::min(runBytes, lanes - begin);
        for (std::size_t j = 0; j < bytes; j += 4) {
            std::uint32_t word;
            std::memcpy(&word, pixels + begin + j, sizeof word);
            word >>= 24;
            word |= word << 8;
            word |= word << 16;
            std::memcpy(limits + j, &word, sizeof word);
        }
        std::uint8_t* const run = blurred + begin;
        for (std::size_t j = 0; j < bytes; ++j) run[j] = std::min(run[j], limits[j]);
    }
}

template <std::size_t pixelBytes>
void turnIntoTile(const std::uint8_t* rows, std::size_t rowBytes, std::size_t count,
                  std::size_t width, std::uint8_t* tile) {
    for (std::size_t x = 0; x < width; ++x) {
        for (std::size_t y = 0; y < count; ++y) {
            std::memcpy(tile + (x * count + y) * pixelBytes, rows + y * rowBytes + x * pixelBytes,
                        pixelBytes);
        }
    }
}

template <std::size_t pixelBytes>
void turnIntoRows(const std::uint8_t* tile, std::size_t count, std::size_t width,
                  std::size_t rowBytes, std::uint8_t* rows) {
    for (std::size_t x = 0; x < width; ++x) {
        for (std::size_t y = 0; y < count; ++y) {
            std::memcpy(rows + y * rowBytes + x * pixelBytes, tile + (x * count + y) * pixelBytes,
                        pixelBytes);
        }
    }
}

std::size_t ceilDivide(std::size_t a, std::size_t b) {
    return (a + b - 1) / b;
}

}  // namespace

StackBlur::StackBlur(std::size_t width, std::size_t height, std::size_t bytesPerPixel, int radius)
    : active_(blurs(width, height, bytesPerPixel, radius)),
      width_(width),
      height_(height),
      pixelBytes_(bytesPerPixel),
      rowBytes_(((width * bytesPerPixel * 8 + 31) >> 5) << 2),
      radius_(static_cast<std::size_t>(radius)) {
    if (!active_) return;
    rowsPerTile_ = std::min(tileBytes / pixelBytes_, height_);
    columnsPerStripe_ = std::min(stripeBytes / pixelBytes_, width_);
    const auto bandsOf = [](std::size_t groups, std::size_t pixels) {
        return platform::bandCount(groups, pixelsPerThread / pixels + 1);
    };
    rowBands_ = bandsOf(ceilDivide(height_, rowsPerTile_), rowsPerTile_ * width_);
    columnBands_ = bandsOf(ceilDivide(width_, columnsPerStripe_), columnsPerStripe_ * height_);

    const std::size_t lanes = std::max(rowsPerTile_, columnsPerStripe_) * pixelBytes_;
    spaces_.resize(std::max(rowBands_, columnBands_));
    for (std::size_t band = 0; band < spaces_.size(); ++band) {
        Workspace& space = spaces_[band];
        space.sum.resize(lanes);
        space.entering.resize(lanes);
        space.leaving.resize(lanes);
        space.blurred.resize(lanes);
        space.replaced.resize((radius_ + 1) * lanes);
        if (band < rowBands_) space.tile.resize(width_ * rowsPerTile_ * pixelBytes_);
    }
}

void StackBlur::blur(const Lines& lines, Workspace& space) const {
    const std::size_t lanes = lines.lanes;
    const std::size_t kept = radius_ + 1;
    const StackBlurScale scale = stackBlurScale(static_cast<unsigned>(radius_));
    const auto sample = [&lines](std::size_t i) {
        return lines.first + std::min(i, lines.length - 1) * lines.stride;
    };
    std::uint32_t* const sum = space.sum.data();
    std::uint32_t* const entering = space.entering.data();
    std::uint32_t* const leaving = space.leaving.data();
    std::uint8_t* const blurred = space.blurred.data();
    std::uint8_t* const replaced = space.replaced.data();

    startSums(sample(0), static_cast<std::uint32_t>(radius_), lanes, sum, entering, leaving);
    for (std::size_t i = 1; i <= kept; ++i) {
        addToSums(sample(i), static_cast<std::uint32_t>(kept - i), lanes, sum, entering);
    }
    for (std::size_t i = 0; i < kept; ++i) std::memcpy(replaced + i * lanes, sample(0), lanes);

    std::size_t slot = 0;  // of the current sample among the replaced ones
    for (std::size_t i = 0; i < lines.length; ++i) {
        std::uint8_t* const current = sample(i);
        std::memcpy(replaced + slot * lanes, current, lanes);
        slot = slot + 1 < kept ? slot + 1 : 0;
        scaleSums(sum, scale, lanes, blurred);
        if (i + 1 < lines.length) {
            advanceSums(sample(i + 1), sample(i + 1 + kept), replaced + slot * lanes, lanes, sum,
                        entering, leaving);
        }
        if (pixelBytes_ == 4) {
            limitToAlpha(current, lanes, blurred);
            storeChannels({current, lanes / 4, 4, 3}, 0, lanes / 4, blurred);
        } else {
            std::memcpy(current, blurred, lanes);
        }
    }
}

void StackBlur::blurRows(std::uint8_t* rows, std::size_t count, Workspace& space) const {
    std::uint8_t* const tile = space.tile.data();
    const std::size_t lanes = count * pixelBytes_;
    withStep(pixelBytes_, [&](auto step) {
        if constexpr (!std::is_same_v<decltype(step), std::size_t>) {
            turnIntoTile<step>(rows, rowBytes_, count, width_, tile);
            blur({tile, lanes, width_, lanes}, space);
            turnIntoRows<step>(tile, count, width_, rowBytes_, rows);
        }
    });
}

void StackBlur::alongRows(std::uint8_t* bits) {
    if (!active_) return;
    const std::size_t tiles = ceilDivide(height_, rowsPerTile_);
    platform::parallelBands(
        tiles, rowBands_, [&](std::size_t band, std::size_t begin, std::size_t end) {
            for (std::size_t tile = begin; tile < end; ++tile) {
                const std::size_t y = tile * rowsPerTile_;
                blurRows(bits + y * rowBytes_, std::min(rowsPerTile_, height_ - y), spaces_[band]);
            }
        });
}

void StackBlur::alongColumns(std::uint8_t* bits) {
    if (!active_) return;
    const std::size_t stripes = ceilDivide(width_, columnsPerStripe_);
    platform::parallelBands(
        stripes, columnBands_, [&](std::size_t band, std::size_t begin, std::size_t end) {
            for (std::size_t stripe = begin; stripe < end; ++stripe) {
                const std::size_t x = stripe * columnsPerStripe_;
                const std::size_t columns = std::min(columnsPerStripe_, width_ - x);
                blur({bits + x * pixelBytes_, rowBytes_, height_, columns * pixelBytes_},
                     spaces_[band]);
            }
        });
}

namespace {

enum Passes : unsigned { rowPass = 1, columnPass = 2 };

void blurBuffer(unsigned char* bits, int width, int height, int bytesPerPixel, int radius,
                unsigned passes) noexcept {
    if (bits == nullptr || width < 1 || height < 1 || bytesPerPixel < 1) return;
    try {
        StackBlur blur(static_cast<std::size_t>(width), static_cast<std::size_t>(height),
                       static_cast<std::size_t>(bytesPerPixel), radius);
        if (passes & rowPass) blur.alongRows(bits);
        if (passes & columnPass) blur.alongColumns(bits);
    } catch (...) {
        // Short of memory: the buffer stays as it was.
    }
}

}  // namespace

}  // namespace keladjust

void stackBlur(unsigned char* bits, int width, int height, int bytesPerPixel, int radius) {
    keladjust::blurBuffer(bits, width, height, bytesPerPixel, radius,
                          keladjust::rowPass | keladjust::columnPass);
}

void stackBlurPass(unsigned char* bits, int width, int height, int bytesPerPixel, int radius,
                   int pass) {
    if (pass != keladjust::rowPass && pass != keladjust::columnPass) return;
    keladjust::blurBuffer(bits, width, height, bytesPerPixel, radius, static_cast<unsigned>(pass));
}
