// Distortion and fringing: pixels, or their channels one by one, fetched from other places along
// the line to the picture's centre. The places depend on size and setting alone; their map is kept.

#include "filters/LensCorrection.h"

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/PixelSpan.h"
#include "ImageFormat/RawWalk.h"
#include "filters/RowWindow.h"
#include "filters/StageForms.h"
#include "filters/rows/LensMaps.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

constexpr std::size_t pixelsPerThread = 1 << 14;

/// Calls `body(begin, end)` for bands of rows on several threads.
template <class Body>
void forEachBand(std::size_t width, std::size_t height, Body body) {
    platform::parallelBands(
        height, platform::bandCount(height, pixelsPerThread / width + 1),
        [&](std::size_t, std::size_t begin, std::size_t end) { body(begin, end); });
}

/// What a map is made for.
struct MapKey {
    unsigned width;
    unsigned height;
    float setting;

    bool operator==(const MapKey&) const = default;
};

/// Keeps the last map. A caller holds a share of the map it works with, so that a host that calls
/// from several threads after all, or releases the library meanwhile, pulls it away under nobody.
template <class Map>
class MapCache {
public:
    std::shared_ptr<const Map> get(const MapKey& key) {
        const std::lock_guard lock(mutex_);
        if (!map_ || !(map_->key == key)) {
            map_.reset();  // before the new one, so that the two never need memory together
            map_ = std::make_shared<const Map>(key);
        }
        return map_;
    }

    void release() {
        const std::lock_guard lock(mutex_);
        map_.reset();
    }

private:
    std::mutex mutex_;
    std::shared_ptr<const Map> map_;
};

/// How far from its destinations a map fetches.
struct Extent {
    void add(std::size_t row, const rows::SourceRows& sources) {
        const auto at = static_cast<std::int64_t>(row);
        leavesPicture |= sources.leavesPicture;
        farthestUp = std::max(farthestUp, at - sources.first);
        farthestDown = std::max(farthestDown, sources.last - at);
    }
    void add(const Extent& other) {
        leavesPicture |= other.leavesPicture;
        farthestUp = std::max(farthestUp, other.farthestUp);
        farthestDown = std::max(farthestDown, other.farthestDown);
    }
    RowReach reach() const {
        return {static_cast<std::size_t>(farthestUp), static_cast<std::size_t>(farthestDown)};
    }

    bool leavesPicture = false;  ///< some place has a column or a row that the picture lacks
    std::int64_t farthestUp = 0;
    std::int64_t farthestDown = 0;
};

/// Builds a map row by row, `row(y)` each, which returns its sources, on several threads.
template <class Row>
Extent buildRows(const MapKey& key, Row row) {
    std::mutex mutex;
    Extent extent;
    forEachBand(key.width, key.height, [&](std::size_t begin, std::size_t end) {
        Extent ofBand;
        for (std::size_t y = begin; y < end; ++y) ofBand.add(y, row(y));
        const std::lock_guard lock(mutex);
        extent.add(ofBand);
    });
    return extent;
}

/// Changes a picture row by row, `change(y, window)` each, on several threads; the window holds the
/// rows within reach as they were. False, with nothing changed, if windows would take more memory
/// than `most` bytes.
template <class Change>
bool changeRowByRow(const OriginalRows& rows, std::size_t width, RowReach reach, std::size_t most,
                    Change change) {
    const std::size_t bands = platform::bandCount(rows.height, pixelsPerThread / width + 1);
    if (RowWindow::rowsFor(reach) > most / rows.bytes / bands) return false;
    std::vector<std::unique_ptr<RowWindow>> windows(bands);
    platform::parallelBands(
        rows.height, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
            windows[band] = std::make_unique<RowWindow>(rows, reach, begin, end);
        });
    platform::parallelBands(rows.height, bands,
                            [&](std::size_t band, std::size_t begin, std::size_t end) {
                                for (std::size_t y = begin; y < end; ++y) {
                                    windows[band]->moveTo(y);
                                    change(y, *windows[band]);
                                }
                            });
    return true;
}

/// Barrel and pincushion: the source of every pixel.
struct DistortionMap {
    explicit DistortionMap(const MapKey& mapKey);

    MapKey key;
    std::unique_ptr<rows::Place[]> places;
    Extent extent;
};

DistortionMap::DistortionMap(const MapKey& mapKey)
    : key(mapKey),
      places(std::make_unique_for_overwrite<rows::Place[]>(std::size_t{key.width} * key.height)) {
    const float d = key.setting / 100.0f;
    const auto centreX = static_cast<float>(key.width / 2);
    const auto centreY = static_cast<float>(key.height / 2);
    const float radius = std::sqrt(centreY * centreY + centreX * centreX);
    const bool negative = d < 0.0f;
    const float unitX = negative ? static_cast<float>(key.width) : radius;
    const float unitY = negative ? static_cast<float>(key.height) : radius;
    const float scale = negative ? 1.0f : 1.0f / (d + 1.0f);

    // The two kinds of distortion use different powers.
    const rows::Distortion distortion{.strength = d,
                                      .cubic = d > 0.0f,
                                      .scale = scale,
                                      .unitX = unitX,
                                      .unitY = unitY,
                                      .centreX = centreX,
                                      .centreY = centreY,
                                      .width = key.width,
                                      .height = key.height};
    const rows::ColumnDistances columns(
        key.width, [&](unsigned x) { return (static_cast<float>(x) - centreX) / unitX; });
    extent = buildRows(key, [&](std::size_t y) {
        return rows::placesOfRow(distortion, columns, (static_cast<float>(y) - centreY) / unitY,
                                 places.get() + y * key.width);
    });
}

MapCache<DistortionMap>& distortionMaps() {
    static MapCache<DistortionMap> cache;
    return cache;
}

/// Where rows hold no padding; the buffer of a padded picture is read and written as if.
struct PackedRows {
    std::size_t step;
    std::size_t width;
    std::size_t size;  ///< bytes in the buffer

    /// A column counts as so many bytes, whatever the depth.
    std::int64_t offsetOf(rows::Place place) const {
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

// Columns count as bytes, so a map that stays inside the picture fetches from the first part of
// every row alone.
bool distortInside(const CxImage& image, const RawWalk& walk, const DistortionMap& map) {
    if (map.extent.leavesPicture) return false;
    const std::size_t width = image.width;
    const std::size_t rowBytes = width * walk.step;
    const OriginalRows rows{walk.first, rowBytes, width + walk.step - 1, image.height};
    return changeRowByRow(
        rows, width, map.extent.reach(), image.size, [&](std::size_t y, const RowWindow& window) {
            const rows::Place* const places = map.places.get() + y * width;
            std::uint8_t* const pixels = walk.first + y * rowBytes;
            const std::size_t shift = window.firstRow() * rows.bytes;
            withStep(walk.step, [&, stride = rows.bytes](auto step) {
                for (std::size_t x = 0; x < width; ++x) {
                    const std::size_t offset = static_cast<std::size_t>(places[x].y) * stride +
                                               static_cast<std::size_t>(places[x].x);
                    std::memcpy(pixels + x * step, window.begin() + (offset - shift), step);
                }
            });
        });
}

// Any map: what it finds outside the buffer leaves a byte as it was.
void distortPartly(CxImage& image, const RawWalk& walk, const DistortionMap& map) {
    const PackedRows rows{walk.step, image.width, image.size};
    const auto copy = std::make_unique_for_overwrite<std::uint8_t[]>(image.size);
    std::memcpy(copy.get(), image.pBits, image.size);
    forEachBand(image.width, image.height, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin * rows.width; i < end * rows.width; ++i) {
            const std::int64_t offset = rows.offsetOf(map.places[i]);
            std::uint8_t* const pixel = walk.first + i * walk.step;
            if (rows.holds(offset, walk.step)) {
                std::memcpy(pixel, copy.get() + offset, walk.step);
            } else {
                fetchPartly(rows, copy.get(), offset, pixel);
            }
        }
    });
}

void distort(CxImage& image, float setting) {
    const RawWalk walk = rawWalkOf(image);
    if (walk.step == 0) return;
    const auto map = distortionMaps().get({image.width, image.height, setting});
    if (!distortInside(image, walk, *map)) distortPartly(image, walk, *map);
}

/// Lateral chromatic aberration: where the red, green and blue of every pixel come from, each as
/// the number of a pixel.
struct FringingMap {
    explicit FringingMap(const MapKey& mapKey);

    MapKey key;
    Extent extent;
    std::size_t nowhere;  ///< stands for places outside the picture, one past its last pixel
    std::unique_ptr<std::uint32_t[]> red;
    std::unique_ptr<std::uint32_t[]> green;
    std::unique_ptr<std::uint32_t[]> blue;
};

FringingMap::FringingMap(const MapKey& mapKey)
    : key(mapKey),
      nowhere(std::size_t{key.width} * key.height),
      red(std::make_unique_for_overwrite<std::uint32_t[]>(nowhere)),
      green(std::make_unique_for_overwrite<std::uint32_t[]>(nowhere)),
      blue(std::make_unique_for_overwrite<std::uint32_t[]>(nowhere)) {
    const float f = key.setting / 100.0f;
    const float offset = f * 0.03f;
    const auto width = static_cast<float>(key.width);
    const auto height = static_cast<float>(key.height);
    const auto centreX = static_cast<float>(key.width / 2);
    const auto centreY = static_cast<float>(key.height / 2);
    // The margin at the right and bottom edges, which in a picture of one column or row leaves
    // nothing inside.
    const float margin = f > 0.0f ? 2.0f : 1.0f;
    const rows::Fringing fringing{.strength = f,
                                  .scale = 1.0f + offset,
                                  .redScale = 1.0f + offset,
                                  .blueScale = 1.0f - offset,
                                  .width = width,
                                  .height = height,
                                  .centreX = centreX,
                                  .centreY = centreY,
                                  .lastX = width - margin,
                                  .lastY = height - margin,
                                  .columns = key.width,
                                  .nowhere = static_cast<std::uint32_t>(nowhere)};
    const rows::ColumnDistances columns(
        key.width, [&](unsigned x) { return (static_cast<float>(x) - centreX) / width; });
    extent = buildRows(key, [&](std::size_t y) {
        const std::size_t first = y * key.width;
        return rows::pixelsOfRow(fringing, columns, (static_cast<float>(y) - centreY) / height,
                                 {red.get() + first, green.get() + first, blue.get() + first});
    });
}

MapCache<FringingMap>& fringingMaps() {
    static MapCache<FringingMap> cache;
    return cache;
}

/// A picture's pixels without the padding of rows, and one more, which is black and clear.
std::unique_ptr<std::uint8_t[]> packedCopy(const CxImage& image, std::size_t pixelBytes) {
    const std::size_t rowBytes = image.width * pixelBytes;
    const std::size_t size = rowBytes * image.height;
    auto copy = std::make_unique_for_overwrite<std::uint8_t[]>(size + pixelBytes);
    std::memset(copy.get() + size, 0, pixelBytes);
    forEachBand(image.width, image.height, [&](std::size_t begin, std::size_t end) {
        for (std::size_t y = begin; y < end; ++y) {
            std::memcpy(copy.get() + y * rowBytes, image.pBits + y * image.effWidth, rowBytes);
        }
    });
    return copy;
}

/// Original pixels, packed, from the pixel of number `firstPixel` on.
struct Originals {
    const std::uint8_t* bytes;
    std::size_t firstPixel;

    template <std::size_t pixelBytes>
    const std::uint8_t* at(std::uint32_t pixel) const {
        return bytes + (pixel - firstPixel) * pixelBytes;
    }
};

/// Where a row of pixels comes from, byte by byte of a pixel; alpha comes along with the second.
struct Sources {
    const std::uint32_t* first;
    const std::uint32_t* second;
    const std::uint32_t* third;
};

void fetchFourBytes(Originals from, Sources sources, std::size_t count, std::uint8_t* pixels) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t word;
        std::memcpy(&word, from.at<4>(sources.second[i]), sizeof word);
        const std::uint32_t first = from.at<4>(sources.first[i])[0];
        const std::uint32_t third = from.at<4>(sources.third[i])[2];
        word = (word & 0xFF00FF00) | third << 16 | first;
        std::memcpy(pixels + 4 * i, &word, sizeof word);
    }
}

void fetchThreeBytes(Originals from, Sources sources, std::size_t count, std::uint8_t* pixels) {
    for (std::size_t i = 0; i < count; ++i) {
        pixels[3 * i] = from.at<3>(sources.first[i])[0];
        pixels[3 * i + 1] = from.at<3>(sources.second[i])[1];
        pixels[3 * i + 2] = from.at<3>(sources.third[i])[2];
    }
}

// The fields of 16-bit pixels are no bytes: a lane each, from pixels collected for it.
void fetchWords(Originals from, PixelLayout layout, const FringingMap& map, std::size_t first,
                PixelSpan& span, std::uint8_t* pixels) {
    PixelSpan collected;
    collected.count = span.count;
    std::uint8_t words[2 * PixelSpan::capacity];
    const auto collect = [&](const std::unique_ptr<std::uint32_t[]>& places) {
        for (std::size_t i = 0; i < span.count; ++i) {
            std::memcpy(words + 2 * i, from.at<2>(places[first + i]), 2);
        }
        loadSpan(layout, words, collected);
    };
    collect(map.red);
    std::memcpy(span.red, collected.red, span.count);
    collect(map.green);
    std::memcpy(span.green, collected.green, span.count);
    collect(map.blue);
    std::memcpy(span.blue, collected.blue, span.count);
    storeSpan(layout, span, pixels);
}

void fetchRow(Originals from, PixelLayout layout, const FringingMap& map, std::size_t y,
              std::uint8_t* pixels) {
    const std::size_t width = map.key.width;
    const std::uint32_t* const red = map.red.get() + y * width;
    const std::uint32_t* const green = map.green.get() + y * width;
    const std::uint32_t* const blue = map.blue.get() + y * width;
    switch (layout) {
        case PixelLayout::gray8:
            // Keeps nothing but its red lane.
            for (std::size_t i = 0; i < width; ++i) pixels[i] = *from.at<1>(red[i]);
            break;
        case PixelLayout::rgb24:
            return fetchThreeBytes(from, {red, green, blue}, width, pixels);
        case PixelLayout::bgr24:
            return fetchThreeBytes(from, {blue, green, red}, width, pixels);
        case PixelLayout::rgba32:
            return fetchFourBytes(from, {red, green, blue}, width, pixels);
        case PixelLayout::bgra32:
            return fetchFourBytes(from, {blue, green, red}, width, pixels);
        case PixelLayout::rgb16:
        case PixelLayout::bgr16: {
            PixelSpan span;
            for (std::size_t x = 0; x < width; x += span.count) {
                span.count = std::min(PixelSpan::capacity, width - x);
                fetchWords(from, layout, map, y * width + x, span, pixels + 2 * x);
            }
            break;
        }
        case PixelLayout::none:
            break;
    }
}

void correctFringing(CxImage& image, float setting) {
    const PixelLayout layout = layoutOf(image);
    if (!hasPixels(&image) || layout == PixelLayout::none) return;
    const auto map = fringingMaps().get({image.width, image.height, setting});
    const auto rowOf = [&](std::size_t y) { return image.pBits + y * image.effWidth; };
    const std::size_t pixelBytes = bytesPerPixelOf(layout);
    const OriginalRows rows{image.pBits, image.effWidth, image.width * pixelBytes, image.height};
    const auto fetchFromWindow = [&](std::size_t y, const RowWindow& window) {
        fetchRow({window.begin(), window.firstRow() * image.width}, layout, *map, y, rowOf(y));
    };
    if (!map->extent.leavesPicture &&
        changeRowByRow(rows, image.width, map->extent.reach(), image.size, fetchFromWindow)) {
        return;
    }
    const auto copy = packedCopy(image, pixelBytes);
    forEachBand(image.width, image.height, [&](std::size_t begin, std::size_t end) {
        for (std::size_t y = begin; y < end; ++y) {
            fetchRow({copy.get(), 0}, layout, *map, y, rowOf(y));
        }
    });
}

}  // namespace

void releaseLensMaps() {
    distortionMaps().release();
    fringingMaps().release();
}

}  // namespace keladjust

CxImage* distortFilter(CxImage* image, float distortion) {
    return keladjust::exportedForm(image, [&] {
        if (image != nullptr && distortion != 0.0f) keladjust::distort(*image, distortion);
    });
}

CxImage* fringingFilter(CxImage* image, float fringing) {
    return keladjust::exportedForm(image, [&] {
        if (image != nullptr && fringing != 0.0f) keladjust::correctFringing(*image, fringing);
    });
}
