#ifndef KELADJUST_FILTERS_LENS_LENSROWS_H
#define KELADJUST_FILTERS_LENS_LENSROWS_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "filters/lens/LensSources.h"
#include "filters/lens/RowWindow.h"
#include "platform/CallScope.h"
#include "platform/Parallel.h"
#include "walks/ThreadShare.h"

namespace keladjust {

/// How many bands of rows a lens stage works on side by side.
inline std::size_t lensBands(std::size_t width, std::size_t height) {
    return platform::bandCount(height, pixelsPerThread / 2 / width + 1);
}

/// Coordinates of larger pictures do not fit their 16 bits.
inline bool lensCoordinatesFit(std::size_t width, std::size_t height) {
    constexpr std::size_t most = 1u << 15;
    return width <= most && height <= most;
}

/// How far a row lies below the centre, in the lens' unit.
inline float rowDistance(const Lens& lens, std::size_t y) {
    return (static_cast<float>(y) - lens.centreY) / lens.unitY;
}

/// How far each column of a picture lies to the right of the centre.
inline ColumnDistances columnDistances(const Lens& lens, std::size_t width) {
    return {width,
            [&](std::size_t x) { return (static_cast<float>(x) - lens.centreX) / lens.unitX; }};
}

/// How far columns lie from the centre, from there out to the left edge.
inline ColumnDistances mirroredDistances(const Lens& lens, std::size_t width) {
    return {width / 2 + 1, [&](std::size_t x) { return static_cast<float>(x) / lens.unitX; }};
}

/// By what a lens multiplies distances from the centre.
inline double lensRatio(const Lens& lens, double length) {
    double raised = lens.strength;
    for (int i = 1; i < lens.power; ++i) raised *= length;
    return (raised + 1.0) * lens.scale;
}

/// How far the rows begin..end-1 fetch from those up to `last`, when a lens' rays are drawn by
/// factors from `smallest` to `largest`. Along a row the ratio grows or falls all the way out, so
/// that sources lie between those of the nearest and the farthest column; single precision, which
/// the formula is computed in, misses them by less than a row.
inline Reach lensReach(const Lens& lens, float smallest, float largest, float last,
                       std::size_t begin, std::size_t end) {
    Reach reach{0, 0};
    const double farthestX = lens.centreX / lens.unitX;
    for (std::size_t row = begin; row < end; ++row) {
        const auto y = static_cast<double>(row);
        const double fromCentre = y - lens.centreY;
        const double near = std::fabs(fromCentre) / lens.unitY;
        const double ratios[] = {lensRatio(lens, near),
                                 lensRatio(lens, std::sqrt(near * near + farthestX * farthestX))};
        for (const double ratio : ratios) {
            for (const double factor : {smallest, largest}) {
                const double place = lens.centreY + fromCentre * ratio * factor;
                const double source = std::floor(std::clamp<double>(place, 0.0, last));
                const double up = std::max(0.0, y - source + 1.0);
                const double down = std::max(0.0, source + 1.0 - y);
                reach.above = std::max(reach.above, static_cast<std::size_t>(up));
                reach.below = std::max(reach.below, static_cast<std::size_t>(down));
            }
        }
    }
    return reach;
}

/// Changes a picture row by row, `change(y, window)` each, on several threads; the window holds the
/// rows as they were that the row fetches from, of those of its band `reachOf(begin, end)`. Windows
/// take no more memory than a copy of the picture.
template <class ReachOf, class Change>
void changeLensRows(const OriginalRows& rows, std::size_t width, ReachOf reachOf, Change change) {
    const std::size_t count = lensBands(width, rows.height);
    const auto none = [](std::size_t, std::size_t) { return Reach{0, 0}; };
    const HaloBands alone(rows, rows.height, count, none);
    const std::size_t share = rows.height * rows.stride / count;
    std::vector<Reach> reaches;
    bool fits = true;
    for (std::size_t i = 0; i < count; ++i) {
        const HaloBands::Band band = alone.band(i);
        const Reach reach = reachOf(band.begin(), band.end());
        const std::size_t kept = RowWindow::rowsFor(rows.height, reach, band.begin(), band.end());
        fits = fits && kept * rows.bytes <= share;
        reaches.push_back(reach);
    }
    if (!fits) {
        const HaloBands whole(rows, 0, 1, none);
        RowWindow all(rows, {0, rows.height}, whole.band(0));
        all.moveTo(0);
        alone.runKept([&](const HaloBands::Band& band) {
            forEachRow(band, [&](std::size_t y) { change(y, std::as_const(all)); });
        });
        return;
    }
    std::size_t made = 0;
    HaloBands bands(rows, rows.height, count, [&](std::size_t, std::size_t) {
        return Reach{0, reaches[made++].below};
    });
    std::vector<std::unique_ptr<RowWindow>> windows(count);
    bands.runKept([&](const HaloBands::Band& band) {
        const std::size_t i = band.index();
        bands.keepHalo(i);
        windows[i] = std::make_unique<RowWindow>(rows, reaches[i], band);
    });
    bands.runKept([&](const HaloBands::Band& band) {
        RowWindow& window = *windows[band.index()];
        forEachRow(band, [&](std::size_t y) {
            window.moveTo(y);
            change(y, std::as_const(window));
        });
    });
}

/// Columns of a row on one side of the centre.
struct RunColumns {
    std::size_t first;
    std::size_t count;
    bool left;

    /// Where they come from, from left to right.
    const std::uint32_t* of(const MirroredRun& run) const {
        return left ? run.left + MirroredRun::capacity - count : run.right;
    }
};

/// From the centre out to both sides of a row, as far as a run goes at a time: calls
/// `compute(first, count)` for columns `first` and further away from the centre, then
/// `fetch(columns)` for either side.
template <class Compute, class Fetch>
void forEachMirroredRun(std::size_t width, Compute compute, Fetch fetch) {
    const std::size_t centre = width / 2;
    for (std::size_t first = 0; first <= centre; first += MirroredRun::capacity) {
        const std::size_t count = std::min(MirroredRun::capacity, centre + 1 - first);
        compute(first, count);
        // At the right a picture of even width lacks the farthest column.
        fetch(RunColumns{centre + first, std::min(count, width - centre - first), false});
        fetch(RunColumns{centre + 1 - first - count, count, true});
    }
}

}  // namespace keladjust

#endif
