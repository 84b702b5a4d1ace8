// Distortion: pixels fetched from other places along the line to the picture's centre.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "filters/lens/LensRows.h"
#include "filters/lens/LensSources.h"
#include "platform/CallScope.h"
#include "platform/Parallel.h"
#include "platform/UnsetArray.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

Lens lensOf(std::size_t width, std::size_t height, float setting) {
    const float d = setting / 100.0f;
    const auto centreX = static_cast<float>(width / 2);
    const auto centreY = static_cast<float>(height / 2);
    const float radius = std::sqrt(centreY * centreY + centreX * centreX);
    const bool negative = d < 0.0f;
    return {.strength = d,
            .power = d > 0.0f ? barrelPower : pincushionPower,
            .scale = negative ? 1.0f : 1.0f / (d + 1.0f),
            .unitX = negative ? static_cast<float>(width) : radius,
            .unitY = negative ? static_cast<float>(height) : radius,
            .centreX = centreX,
            .centreY = centreY};
}

// No source lies outside the picture if every pixel comes from between itself and the centre. What
// single precision misses at the edges goes when coordinates are truncated toward zero.
bool staysInside(const Lens& lens) {
    constexpr float strongest = 100.0f;  // far from what single precision does not hold
    if (!(lens.unitX > 0.0f && lens.unitY > 0.0f && std::fabs(lens.strength) <= strongest)) {
        return false;
    }
    const double corner = std::hypot(lens.centreX / lens.unitX, lens.centreY / lens.unitY);
    constexpr double most = 1.0 + 1e-6;
    const auto drawsInward = [&](double ratio) { return ratio >= 0.0 && ratio <= most; };
    return drawsInward(lensRatio(lens, 0.0)) && drawsInward(lensRatio(lens, corner));
}

// A column counts as so many bytes, whatever the depth, so pixels come from the first part of every
// row alone.
void distortInside(const Picture& picture, const RawWalk& walk, const Lens& lens) {
    const std::size_t width = picture.width;
    const std::size_t rowBytes = width * walk.step;
    const ColumnDistances columns = mirroredDistances(lens, width);
    const OriginalRows rows{walk.first, rowBytes, width + walk.step - 1, picture.height};
    const auto reach = [&](std::size_t begin, std::size_t end) {
        return lensReach(lens, 1.0f, 1.0f, static_cast<float>(picture.height - 1), begin, end);
    };
    changeLensRows(rows, width, reach, [&](std::size_t y, const RowWindow& window) {
        const RowRing ring = window.ring(rows.bytes);
        const float distance = rowDistance(lens, y);
        std::uint8_t* const pixels = walk.first + y * rowBytes;
        MirroredRun run;
        const auto compute = [&](std::size_t first, std::size_t count) {
            distortedRun(lens, columns.data() + first, count, distance,
                         static_cast<std::int32_t>(width - 1), ring, run);
        };
        withStep(walk.step, [&](auto step) {
            forEachMirroredRun(width, compute, [&](const RunColumns& side) {
                const std::uint32_t* const sources = side.of(run);
                const std::uint8_t* const from = window.bytes();
                std::uint8_t* const to = pixels + side.first * step;
                for (std::size_t i = 0; i < side.count; ++i) {
                    std::memcpy(to + i * step, from + sources[i], step);
                }
            });
        });
    });
}

/// Where rows hold no padding; the buffer of a padded picture is read and written as if.
struct PackedRows {
    std::size_t step;
    std::size_t width;
    std::size_t size;  ///< bytes in the buffer

    std::int64_t offsetOf(Place place) const {
        return static_cast<std::int64_t>(step * width) * place.y + place.x;
    }
    bool holds(std::int64_t offset, std::size_t bytes) const {
        return offset >= 0 && static_cast<std::size_t>(offset) + bytes <= size;
    }
};

// One pixel, of which parts may lie outside the buffer: those bytes stay as they were.
void fetchPartly(const PackedRows& rows, const std::uint8_t* source, std::int64_t offset,
                 std::uint8_t* pixel) {
    for (std::size_t i = 0; i < rows.step; ++i) {
        const std::int64_t at = offset + static_cast<std::int64_t>(i);
        if (rows.holds(at, 1)) pixel[i] = source[at];
    }
}

// Any setting and size: what is fetched from outside the buffer leaves a byte as it was.
void distortPartly(const Picture& picture, const RawWalk& walk, const Lens& lens) {
    const PackedRows rows{walk.step, picture.width, picture.size()};
    const ColumnDistances columns = columnDistances(lens, picture.width);
    const auto copy = platform::makeUnsetArray<std::uint8_t>(picture.size());
    std::memcpy(copy.get(), picture.first, picture.size());
    const std::size_t bands = lensBands(picture.width, picture.height);
    std::vector<std::vector<Place>> places(bands, std::vector<Place>(rows.width));
    platform::parallelBands(
        picture.height, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
            for (std::size_t y = begin; y < end; ++y) {
                if (platform::checkpoint(y - begin, end - begin)) return;
                placesOfRow(lens, columns, rowDistance(lens, y), places[band].data());
                std::uint8_t* pixel = walk.first + y * rows.width * walk.step;
                for (const Place place : places[band]) {
                    const std::int64_t offset = rows.offsetOf(place);
                    if (rows.holds(offset, walk.step)) {
                        std::memcpy(pixel, copy.get() + offset, walk.step);
                    } else {
                        fetchPartly(rows, copy.get(), offset, pixel);
                    }
                    pixel += walk.step;
                }
            }
        });
}

void distort(const Picture& picture, float setting) {
    const RawWalk walk = rawWalkOf(picture);
    if (walk.step == 0) return;
    const Lens lens = lensOf(picture.width, picture.height, setting);
    if (lensCoordinatesFit(picture.width, picture.height) && staysInside(lens)) {
        distortInside(picture, walk, lens);
    } else {
        distortPartly(picture, walk, lens);
    }
}

}  // namespace

}  // namespace keladjust

CxImage* distortFilter(CxImage* image, float distortion) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        if (distortion != 0.0f) keladjust::distort(picture, distortion);
    });
}
