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

#include "ImageFormat/Geometry.h"
#include "ImageFormat/PixelSpan.h"
#include "ImageFormat/RawWalk.h"
#include "filters/Rounding.h"
#include "filters/StageForms.h"
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

// Coordinates are kept as the low 16 bits of the whole number.
std::int16_t coordinate(float value) {
    return static_cast<std::int16_t>(truncateToInt(value));
}

/// A place relative to the centre: how far away and in which direction.
struct Ray {
    Ray(float x, float y) : length(std::sqrt(y * y + x * x)) {
        directionX = length == 0.0f ? 0.0f : x / length;
        directionY = length == 0.0f ? 0.0f : y / length;
    }
    float length;
    float directionX;
    float directionY;
};

struct Place {
    std::int16_t x;
    std::int16_t y;
};

/// Barrel and pincushion: the source of every pixel.
struct DistortionMap {
    explicit DistortionMap(const MapKey& mapKey);

    MapKey key;
    std::unique_ptr<Place[]> places;
};

// Products from left to right. The two kinds of distortion use different powers.
float distortionPower(float length, bool positive) {
    const float cubed = length * length * length;
    return positive ? cubed : cubed * length * length * length;
}

DistortionMap::DistortionMap(const MapKey& mapKey)
    : key(mapKey),
      places(std::make_unique_for_overwrite<Place[]>(std::size_t{key.width} * key.height)) {
    const float d = key.setting / 100.0f;
    const auto centreX = static_cast<float>(key.width / 2);
    const auto centreY = static_cast<float>(key.height / 2);
    const float radius = std::sqrt(centreY * centreY + centreX * centreX);
    const bool negative = d < 0.0f;
    const float unitX = negative ? static_cast<float>(key.width) : radius;
    const float unitY = negative ? static_cast<float>(key.height) : radius;
    const float scale = negative ? 1.0f : 1.0f / (d + 1.0f);
    const bool positive = d > 0.0f;

    forEachBand(key.width, key.height, [&](std::size_t begin, std::size_t end) {
        for (std::size_t y = begin; y < end; ++y) {
            Place* const row = places.get() + y * key.width;
            const float ny = (static_cast<float>(y) - centreY) / unitY;
            for (unsigned x = 0; x < key.width; ++x) {
                const Ray ray((static_cast<float>(x) - centreX) / unitX, ny);
                const float moved =
                    (distortionPower(ray.length, positive) * d + ray.length) * scale;
                row[x] = {coordinate(moved * ray.directionX * unitX + centreX),
                          coordinate(moved * ray.directionY * unitY + centreY)};
            }
        }
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

void distort(CxImage& image, float setting) {
    const RawWalk walk = rawWalkOf(image);
    if (walk.step == 0) return;
    const auto map = distortionMaps().get({image.width, image.height, setting});
    const PackedRows rows{walk.step, image.width, image.size};
    const auto copy = std::make_unique_for_overwrite<std::uint8_t[]>(image.size);
    std::memcpy(copy.get(), image.pBits, image.size);

    forEachBand(image.width, image.height, [&](std::size_t begin, std::size_t end) {
        withStep(walk.step, [&](auto step) {
            for (std::size_t i = begin * rows.width; i < end * rows.width; ++i) {
                const std::int64_t offset = rows.offsetOf(map->places[i]);
                std::uint8_t* const pixel = walk.first + i * step;
                if (rows.holds(offset, step)) {
                    std::memcpy(pixel, copy.get() + offset, step);
                } else {
                    fetchPartly(rows, copy.get(), offset, pixel);
                }
            }
        });
    });
}

/// Lateral chromatic aberration: where the red, green and blue of every pixel come from, each as
/// the number of a pixel.
struct FringingMap {
    explicit FringingMap(const MapKey& mapKey);

    MapKey key;
    std::size_t nowhere;  ///< stands for places outside the picture, one past its last pixel
    std::unique_ptr<std::uint32_t[]> red;
    std::unique_ptr<std::uint32_t[]> green;
    std::unique_ptr<std::uint32_t[]> blue;
};

// Ten factors, from left to right.
float tenthPower(float length) {
    float power = length;
    for (int i = 1; i < 10; ++i) power *= length;
    return power;
}

// Below 0, which NaN counts as, the lower bound, even where the upper one is smaller.
float clampPlace(float value, float last) {
    if (!(value >= 0.0f)) value = 0.0f;
    return value >= last ? last : value;
}

FringingMap::FringingMap(const MapKey& mapKey)
    : key(mapKey),
      nowhere(std::size_t{key.width} * key.height),
      red(std::make_unique_for_overwrite<std::uint32_t[]>(nowhere)),
      green(std::make_unique_for_overwrite<std::uint32_t[]>(nowhere)),
      blue(std::make_unique_for_overwrite<std::uint32_t[]>(nowhere)) {
    const float f = key.setting / 100.0f;
    const float offset = f * 0.03f;
    const float scale = 1.0f + offset;
    const float blueScale = 1.0f - offset;
    const float redScale = 1.0f + offset;
    const auto width = static_cast<float>(key.width);
    const auto height = static_cast<float>(key.height);
    const auto centreX = static_cast<float>(key.width / 2);
    const auto centreY = static_cast<float>(key.height / 2);
    // The margin at the right and bottom edges, which in a picture of one column or row leaves
    // nothing inside.
    const float margin = f > 0.0f ? 2.0f : 1.0f;
    const float lastX = width - margin;
    const float lastY = height - margin;

    const auto pixelAt = [&](float x, float y) {
        const std::int32_t column = coordinate(clampPlace(x, lastX));
        const std::int32_t line = coordinate(clampPlace(y, lastY));
        const std::uint32_t inside =
            static_cast<std::uint32_t>(line) * key.width + static_cast<std::uint32_t>(column);
        return (column | line) < 0 ? static_cast<std::uint32_t>(nowhere) : inside;
    };

    forEachBand(key.width, key.height, [&](std::size_t begin, std::size_t end) {
        for (std::size_t y = begin; y < end; ++y) {
            const float ny = (static_cast<float>(y) - centreY) / height;
            for (unsigned x = 0; x < key.width; ++x) {
                const Ray ray((static_cast<float>(x) - centreX) / width, ny);
                const float moved = (tenthPower(ray.length) * f + ray.length) * scale;
                const std::size_t i = y * key.width + x;
                blue[i] = pixelAt(blueScale * ray.directionX * moved * width + centreX,
                                  blueScale * ray.directionY * moved * height + centreY);
                green[i] = pixelAt(ray.directionX * moved * width + centreX,
                                   ray.directionY * moved * height + centreY);
                red[i] = pixelAt(redScale * ray.directionX * moved * width + centreX,
                                 redScale * ray.directionY * moved * height + centreY);
            }
        }
    });
}

MapCache<FringingMap>& fringingMaps() {
    static MapCache<FringingMap> cache;
    return cache;
}

/// A picture's lanes as whole planes, each with one pixel more, which is black and clear.
class Planes {
public:
    Planes(const CxImage& image, PixelLayout layout) : layout_(layout) {
        const std::size_t size = std::size_t{image.width} * image.height + 1;
        // A grey picture keeps nothing but its red lane.
        const bool grey = layout == PixelLayout::gray8;
        red_ = std::make_unique_for_overwrite<std::uint8_t[]>(size);
        if (!grey) green_ = std::make_unique_for_overwrite<std::uint8_t[]>(size);
        if (!grey) blue_ = std::make_unique_for_overwrite<std::uint8_t[]>(size);
        if (bytesPerPixelOf(layout) == 4) {
            alpha_ = std::make_unique_for_overwrite<std::uint8_t[]>(size);
        }
        for (std::uint8_t* plane : {red_.get(), green_.get(), blue_.get(), alpha_.get()}) {
            if (plane != nullptr) plane[size - 1] = 0;
        }
    }

    /// Takes a run of pixels that begins with the picture's pixel number `first`.
    void take(const std::uint8_t* pixels, std::size_t first, PixelSpan& span) {
        loadSpan(layout_, pixels, span);
        std::memcpy(red_.get() + first, span.red, span.count);
        if (green_) std::memcpy(green_.get() + first, span.green, span.count);
        if (blue_) std::memcpy(blue_.get() + first, span.blue, span.count);
        if (alpha_) loadAlpha(layout_, pixels, span.count, alpha_.get() + first);
    }

    /// Fills a run of pixels from the places that the map names; alpha comes along with green.
    void fetch(const FringingMap& map, std::size_t first, PixelSpan& span,
               std::uint8_t* pixels) const {
        gather(red_.get(), map.red.get() + first, span.count, span.red);
        if (green_) gather(green_.get(), map.green.get() + first, span.count, span.green);
        if (blue_) gather(blue_.get(), map.blue.get() + first, span.count, span.blue);
        storeSpan(layout_, span, pixels);
        if (!alpha_) return;
        const std::uint32_t* const places = map.green.get() + first;
        for (std::size_t i = 0; i < span.count; ++i) pixels[4 * i + 3] = alpha_[places[i]];
    }

private:
    static void gather(const std::uint8_t* plane, const std::uint32_t* places, std::size_t count,
                       std::uint8_t* lane) {
        for (std::size_t i = 0; i < count; ++i) lane[i] = plane[places[i]];
    }

    PixelLayout layout_;
    std::unique_ptr<std::uint8_t[]> red_;
    std::unique_ptr<std::uint8_t[]> green_;
    std::unique_ptr<std::uint8_t[]> blue_;
    std::unique_ptr<std::uint8_t[]> alpha_;
};

/// Calls `body(pixels, first, span)` for run after run of a picture's pixels, on several threads;
/// `first` numbers the pixels without regard to padding.
template <class Body>
void forEachRun(CxImage& image, PixelLayout layout, Body body) {
    forEachBand(image.width, image.height, [&](std::size_t begin, std::size_t end) {
        PixelSpan span;
        for (std::size_t y = begin; y < end; ++y) {
            for (std::size_t x = 0; x < image.width; x += span.count) {
                span.count = std::min(PixelSpan::capacity, image.width - x);
                body(image.pBits + y * image.effWidth + x * bytesPerPixelOf(layout),
                     y * image.width + x, span);
            }
        }
    });
}

void correctFringing(CxImage& image, float setting) {
    const PixelLayout layout = layoutOf(image);
    if (!hasPixels(&image) || layout == PixelLayout::none) return;
    const auto map = fringingMaps().get({image.width, image.height, setting});
    Planes planes(image, layout);
    forEachRun(image, layout, [&](const std::uint8_t* pixels, std::size_t first, PixelSpan& span) {
        planes.take(pixels, first, span);
    });
    forEachRun(image, layout, [&](std::uint8_t* pixels, std::size_t first, PixelSpan& span) {
        planes.fetch(*map, first, span, pixels);
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
