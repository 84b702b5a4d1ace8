// Stack Blur (Mario Klingemann): a triangular kernel from running sums, the same work at every
// radius.

#include "filters/blur/StackBlur.h"

#include <keladjust/keladjust.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "ImageFormat/Geometry.h"
#include "filters/blur/SmallBlur.h"
#include "filters/blur/StackBlurRows.h"
#include "platform/CallScope.h"
#include "walks/StageForms.h"
#include "walks/ThreadShare.h"

namespace keladjust {

namespace {

// Rows that the blur across takes in one go, during which its sums stay in registers.
constexpr std::size_t stepsPerCall = 8;

// Cache lines of rows below one another must not fall into one set of a cache.
std::size_t ringStrideFor(std::size_t rowBytes) {
    constexpr std::size_t line = 64;
    return ((rowBytes + line - 1) / line | 1) * line;
}

std::size_t rowsPerThread(const ByteRows& rows, std::size_t radius) {
    // A band also blurs the rows within reach beyond its own.
    return std::max(bytesPerThread / rows.bytes, 2 * radius) + 1;
}

using TileRows = std::array<std::size_t, tileRows(1)>;

// `count` rows from `first` on, the last one repeated until a tile is full.
TileRows tileOf(std::size_t first, std::size_t count) {
    TileRows tile;
    for (std::size_t i = 0; i < tile.size(); ++i) tile[i] = first + std::min(i, count - 1);
    return tile;
}

}  // namespace

std::optional<ByteRows> stackBlurRows(std::uint8_t* bits, std::size_t width, std::size_t height,
                                      std::size_t pixelBytes, int radius) {
    const bool knownPixels = pixelBytes == 1 || pixelBytes == 3 || pixelBytes == 4;
    if (width == 0 || height == 0 || !knownPixels || radius < 1 || radius > 254) return {};
    const auto stride = static_cast<std::size_t>(paddedRowBytes(width * pixelBytes));
    return ByteRows{bits, stride, width * pixelBytes, height};
}

StackBlur::StackBlur(const ByteRows& rows, std::size_t pixelBytes, std::size_t radius,
                     bool alongRows)
    : rows_(rows),
      pixelBytes_(pixelBytes),
      radius_(radius),
      alongRows_(alongRows),
      bands_(rows, radius, rowsPerThread(rows, radius)),
      // What the steps of a call reach, and the rest of a tile that reaches further.
      ringRows_(std::min(2 * radius + 2 + stepsPerCall, rows.height) + tileRows(pixelBytes)),
      ringStride_(ringStrideFor(rows.bytes)),
      noRow_(rows.bytes),
      spaces_(bands_.count()) {
    for (Workspace& space : spaces_) {
        space.ring.resize(ringRows_ * ringStride_);
        space.state.resize(blurStateSize(rows.bytes));
        if (alongRows_) space.tile.resize(tileSize(rows.bytes / pixelBytes, radius));
    }
}

/// One thread's way down its band.
class StackBlur::BandRun {
public:
    BandRun(const StackBlur& blur, const HaloBands::Band& band, Workspace& space)
        : blur_(blur),
          band_(band),
          space_(space),
          last_(std::min(band.end() + blur.radius_, blur.rows_.height) - 1),
          ready_(band.begin() - std::min(band.begin(), blur.radius_)) {
        std::fill(space.state.begin(), space.state.end(), std::uint8_t{0});
    }

    void run(std::size_t pushed, float factor) {
        const auto radius = static_cast<std::ptrdiff_t>(blur_.radius_);
        const auto begin = static_cast<std::ptrdiff_t>(band_.begin());
        const auto end = static_cast<std::ptrdiff_t>(band_.end());
        std::array<BlurStep, stepsPerCall> steps;
        // The first row that counts for the band's first comes within reach of this one.
        for (std::ptrdiff_t y = begin - 2 * radius - 1; y < end;) {
            const auto done = static_cast<std::size_t>(std::max<std::ptrdiff_t>(y - begin, 0));
            if (platform::checkpoint(done, band_.end() - band_.begin())) return;
            std::size_t count = 0;
            for (; count < steps.size() && y < end; ++count, ++y) {
                makeReady(y + radius + 1);
                steps[count] = {row(y + radius + 1), row(y), row(y - radius - 1), nullptr, 0};
                if (y >= begin) {
                    const auto at = static_cast<std::size_t>(y);
                    const std::size_t offset = at * blur_.rows_.stride;
                    steps[count].target = blur_.rows_[at];
                    steps[count].pushed = pushed - std::min(pushed, offset);
                }
            }
            stackBlurAcross({steps.data(), count}, blur_.rows_.bytes, blur_.pixelBytes_,
                            blur_.radius_, factor, space_.state.data());
        }
    }

private:
    std::uint8_t* slot(std::size_t y) const {
        return space_.ring.data() + y % blur_.ringRows_ * blur_.ringStride_;
    }

    std::size_t clamped(std::ptrdiff_t y) const {
        return std::min(static_cast<std::size_t>(std::max<std::ptrdiff_t>(y, 0)), last_);
    }

    // Beyond the picture its first and last row go on. Above what counts for the band are zeros.
    const std::uint8_t* row(std::ptrdiff_t y) const {
        const bool counts = y + static_cast<std::ptrdiff_t>(blur_.radius_) >=
                            static_cast<std::ptrdiff_t>(band_.begin());
        return counts ? slot(clamped(y)) : blur_.noRow_.data();
    }

    // Blurs rows along their length up to y, a tile at a time, or takes them as they are.
    void makeReady(std::ptrdiff_t y) {
        const std::size_t together = tileRows(blur_.pixelBytes_);
        while (ready_ <= clamped(y)) {
            const std::size_t count = std::min(together, last_ + 1 - ready_);
            if (blur_.alongRows_) {
                const TileRows tile = tileOf(ready_, count);
                std::array<const std::uint8_t*, tile.size()> sources;
                std::array<std::uint8_t*, tile.size()> targets;
                for (std::size_t i = 0; i < together; ++i) {
                    sources[i] = band_.row(tile[i]);
                    targets[i] = slot(tile[i]);
                }
                stackBlurAlong(sources.data(), blur_.rows_.bytes / blur_.pixelBytes_,
                               blur_.pixelBytes_, blur_.radius_, space_.tile.data(),
                               targets.data());
            } else {
                for (std::size_t i = 0; i < count; ++i) {
                    std::memcpy(slot(ready_ + i), band_.row(ready_ + i), blur_.rows_.bytes);
                }
            }
            ready_ += count;
        }
    }

    const StackBlur& blur_;
    const HaloBands::Band& band_;
    Workspace& space_;
    std::size_t last_;   // of the rows that count for the band
    std::size_t ready_;  // the first row that is not in the ring yet
};

void StackBlur::run(std::size_t pushed, float factor) {
    bands_.run([&](const HaloBands::Band& band) {
        BandRun(*this, band, spaces_[band.index()]).run(pushed, factor);
    });
}

void stackBlurAlongRows(const ByteRows& rows, std::size_t pixelBytes, std::size_t radius) {
    const std::size_t together = tileRows(pixelBytes);
    const std::size_t tiles = (rows.height + together - 1) / together;
    const std::size_t bands =
        platform::bandCount(tiles, bytesPerThread / (together * rows.bytes) + 1);
    const std::size_t width = rows.bytes / pixelBytes;
    std::vector<std::vector<std::uint8_t>> spaces(
        bands, std::vector<std::uint8_t>(tileSize(width, radius)));
    platform::parallelBands(
        tiles, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
            for (std::size_t y = begin * together; y < std::min(end * together, rows.height);
                 y += together) {
                const TileRows tile = tileOf(y, std::min(together, rows.height - y));
                std::array<std::uint8_t*, tile.size()> targets;
                for (std::size_t i = 0; i < together; ++i) targets[i] = rows[tile[i]];
                stackBlurAlong(targets.data(), width, pixelBytes, radius, spaces[band].data(),
                               targets.data());
            }
        });
}

namespace {

enum Passes : unsigned { rowPass = 1, columnPass = 2 };

void blurBuffer(unsigned char* bits, int width, int height, int bytesPerPixel, int radius,
                unsigned passes) noexcept {
    if (bits == nullptr || width < 1 || height < 1 || bytesPerPixel < 1) return;
    const auto pixelBytes = static_cast<std::size_t>(bytesPerPixel);
    const auto rows = stackBlurRows(bits, static_cast<std::size_t>(width),
                                    static_cast<std::size_t>(height), pixelBytes, radius);
    if (!rows) return;
    const auto reach = static_cast<std::size_t>(radius);
    guarded([&] {
        if (passes == rowPass) {
            stackBlurAlongRows(*rows, pixelBytes, reach);
        } else if (passes == columnPass) {
            StackBlur(*rows, pixelBytes, reach, false).run();
        } else if (radius == SmallBlur::radius) {
            SmallBlur(*rows, pixelBytes).run();
        } else {
            StackBlur(*rows, pixelBytes, reach).run();
        }
    });
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
