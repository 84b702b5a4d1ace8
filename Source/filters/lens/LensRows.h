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
inline bool lensCoordinatesFit(unsigned width, unsigned height) {
    constexpr unsigned most = 1u << 15;
    return width <= most && height <= most;
}

/// How far a row lies below the centre, in the lens' unit.
inline float rowDistance(const rows::Lens& lens, std::size_t y) {
    return (static_cast<float>(y) - lens.centreY) / lens.unitY;
}

/// How far each column of a picture lies to the right of the centre.
inline rows::ColumnDistances columnDistances(const rows::Lens& lens, std::size_t width) {
    return {width,
            [&](std::size_t x) { return (static_cast<float>(x) - lens.centreX) / lens.unitX; }};
}

/// How far columns lie from the centre, from there out to the left edge.
inline rows::ColumnDistances mirroredDistances(const rows::Lens& lens, std::size_t width) {
    return {width / 2 + 1, [&](std::size_t x) { return static_cast<float>(x) / lens.unitX; }};
}

/// By what a lens multiplies distances from the centre.
inline double lensRatio(const rows::Lens& lens, double length) {
    double raised = lens.strength;
    for (int i = 1; i < lens.power; ++i) raised *= length;
    return (raised + 1.0) * lens.scale;
}

/// How far the rows begin..end-1 fetch from those up to `last`, when a lens' rays are drawn by
/// factors from `smallest` to `largest`. Along a row the ratio grows or falls all the way out, so
/// that sources lie between those of the nearest and the farthest column; single precision, which
/// the formula is computed in, misses them by less than a row.
inline RowReach lensReach(const rows::Lens& lens, float smallest, float largest, float last,
                          std::size_t begin, std::size_t end) {
    RowReach reach;
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
                reach.up = std::max(reach.up, static_cast<std::size_t>(up));
                reach.down = std::max(reach.down, static_cast<std::size_t>(down));
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
    const std::size_t bands = lensBands(width, rows.height);
    const std::size_t share = rows.height * rows.stride / bands;
    std::vector<std::unique_ptr<RowWindow>> windows(bands);
    platform::parallelBands(
        rows.height, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
            const RowReach reach = reachOf(begin, end);
            if (RowWindow::rowsFor(rows.height, reach, begin, end) * rows.bytes <= share) {
                windows[band] = std::make_unique<RowWindow>(rows, reach, begin, end);
            }
        });
    if (std::find(windows.begin(), windows.end(), nullptr) != windows.end()) {
        windows.clear();
        RowWindow all(rows, {rows.height, rows.height}, 0, rows.height);
        all.moveTo(0);
        platform::parallelBands(rows.height, bands,
                                [&](std::size_t, std::size_t begin, std::size_t end) {
                                    for (std::size_t y = begin; y < end; ++y) {
                                        if (platform::checkpoint(y - begin, end - begin)) return;
                                        change(y, all);
                                    }
                                });
        return;
    }
    platform::parallelBands(rows.height, bands,
                            [&](std::size_t band, std::size_t begin, std::size_t end) {
                                RowWindow& window = *windows[band];
                                for (std::size_t y = begin; y < end; ++y) {
                                    if (platform::checkpoint(y - begin, end - begin)) return;
                                    window.moveTo(y);
                                    change(y, std::as_const(window));
                                }
                            });
}

/// Columns of a row on one side of the centre.
struct RunColumns {
    std::size_t first;
    std::size_t count;
    bool left;

    /// Where they come from, from left to right.
    const std::uint32_t* of(const rows::MirroredRun& run) const {
        return left ? run.left + rows::MirroredRun::capacity - count : run.right;
    }
};

/// From the centre out to both sides of a row, as far as a run goes at a time: calls
/// `compute(first, count)` for columns `first` and further away from the centre, then
/// `fetch(columns)` for either side.
template <class Compute, class Fetch>
void forEachMirroredRun(std::size_t width, Compute compute, Fetch fetch) {
    const std::size_t centre = width / 2;
    for (std::size_t first = 0; first <= centre; first += rows::MirroredRun::capacity) {
        const std::size_t count = std::min(rows::MirroredRun::capacity, centre + 1 - first);
        compute(first, count);
        // At the right a picture of even width lacks the farthest column.
        fetch(RunColumns{centre + first, std::min(count, width - centre - first), false});
        fetch(RunColumns{centre + 1 - first - count, count, true});
    }
}

}  // namespace keladjust

#endif
