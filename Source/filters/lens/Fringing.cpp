// Lateral chromatic aberration: red, green and blue of every pixel fetched from different places
// along the line to the picture's centre.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "ImageFormat/PixelSpan.h"
#include "filters/lens/LensRows.h"
#include "filters/lens/LensSources.h"
#include "platform/CallScope.h"
#include "platform/Parallel.h"
#include "platform/UnsetArray.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

Fringing fringingOf(std::size_t pictureWidth, std::size_t pictureHeight, float setting) {
    const float f = setting / 100.0f;
    const float offset = f * 0.03f;
    const auto width = static_cast<float>(pictureWidth);
    const auto height = static_cast<float>(pictureHeight);
    // The margin at the right and bottom edges, which in a picture of one column or row leaves
    // nothing inside.
    const float margin = f > 0.0f ? 2.0f : 1.0f;
    return {.lens = {.strength = f,
                     .power = fringingPower,
                     .scale = 1.0f + offset,
                     .unitX = width,
                     .unitY = height,
                     .centreX = static_cast<float>(pictureWidth / 2),
                     .centreY = static_cast<float>(pictureHeight / 2)},
            .redFactor = 1.0f + offset,
            .blueFactor = 1.0f - offset,
            .lastX = width - margin,
            .lastY = height - margin};
}

// Places are clamped, so that none lies outside a picture that has an inside.
bool staysInside(const Fringing& fringing) {
    constexpr float strongest = 100.0f;  // far from what single precision does not hold
    return fringing.lastX >= 0.0f && fringing.lastY >= 0.0f &&
           std::fabs(fringing.lens.strength) <= strongest;
}

/// Where a run of pixels comes from, as numbers of pixels. Alpha comes along with green.
struct Sources {
    const std::uint32_t* red;
    const std::uint32_t* green;
    const std::uint32_t* blue;
};

template <std::size_t pixelBytes>
const std::uint8_t* pixelAt(const std::uint8_t* originals, std::uint32_t number) {
    return originals + std::size_t{number} * pixelBytes;
}

// Byte by byte of a pixel.
void fetchThreeBytes(const std::uint8_t* originals, const std::uint32_t* firsts,
                     const std::uint32_t* seconds, const std::uint32_t* thirds, std::size_t count,
                     std::uint8_t* pixels) {
    for (std::size_t i = 0; i < count; ++i) {
        pixels[3 * i] = pixelAt<3>(originals, firsts[i])[0];
        pixels[3 * i + 1] = pixelAt<3>(originals, seconds[i])[1];
        pixels[3 * i + 2] = pixelAt<3>(originals, thirds[i])[2];
    }
}

// The fields of 16-bit pixels are no bytes: a lane each, from pixels collected for it.
void fetchWords(const std::uint8_t* originals, PixelLayout layout, const Sources& sources,
                std::size_t count, std::uint8_t* pixels) {
    PixelSpan span;
    PixelSpan collected;
    std::uint8_t words[2 * PixelSpan::capacity];
    for (std::size_t first = 0; first < count; first += span.count) {
        span.count = collected.count = std::min(PixelSpan::capacity, count - first);
        const auto collect = [&](const std::uint32_t* numbers) {
            for (std::size_t i = 0; i < span.count; ++i) {
                std::memcpy(words + 2 * i, pixelAt<2>(originals, numbers[first + i]), 2);
            }
            loadSpan(layout, words, collected);
        };
        collect(sources.red);
        std::memcpy(span.red, collected.red, span.count);
        collect(sources.green);
        std::memcpy(span.green, collected.green, span.count);
        collect(sources.blue);
        std::memcpy(span.blue, collected.blue, span.count);
        storeSpan(layout, span, pixels + 2 * first);
    }
}

void fetchPixels(const std::uint8_t* originals, PixelLayout layout, const Sources& sources,
                 std::size_t count, std::uint8_t* pixels) {
    const auto& [red, green, blue] = sources;
    switch (layout) {
        case PixelLayout::gray8:
            // Keeps nothing but its red lane.
            for (std::size_t i = 0; i < count; ++i) pixels[i] = *pixelAt<1>(originals, red[i]);
            break;
        case PixelLayout::rgb24:
            return fetchThreeBytes(originals, red, green, blue, count, pixels);
        case PixelLayout::bgr24:
            return fetchThreeBytes(originals, blue, green, red, count, pixels);
        case PixelLayout::rgba32:
            return fetchFringed(originals, red, green, blue, count, pixels);
        case PixelLayout::bgra32:
            return fetchFringed(originals, blue, green, red, count, pixels);
        case PixelLayout::rgb16:
        case PixelLayout::bgr16:
            return fetchWords(originals, layout, sources, count, pixels);
        case PixelLayout::none:
            break;
    }
}

void correctInside(const Picture& picture, const Fringing& fringing) {
    const std::size_t width = picture.width;
    const std::size_t pixelBytes = picture.bytesPerPixel;
    const Lens& lens = fringing.lens;
    const ColumnDistances columns = mirroredDistances(lens, width);
    const OriginalRows rows = rowsOf(picture);
    const auto reach = [&](std::size_t begin, std::size_t end) {
        const auto [smallest, largest] =
            std::minmax({1.0f, fringing.redFactor, fringing.blueFactor});
        return lensReach(lens, smallest, largest, fringing.lastY, begin, end);
    };
    changeLensRows(rows, width, reach, [&](std::size_t y, const RowWindow& window) {
        RowRing ring = window.ring(width);
        ring.bottom = std::clamp(static_cast<std::int32_t>(fringing.lastY), ring.top, ring.bottom);
        const float distance = rowDistance(lens, y);
        std::uint8_t* const pixels = picture.row(y);
        FringingRun run;
        const auto compute = [&](std::size_t first, std::size_t count) {
            fringedRun(fringing, columns.data() + first, count, distance, ring, run);
        };
        forEachMirroredRun(width, compute, [&](const RunColumns& side) {
            fetchPixels(window.bytes(), picture.layout,
                        {side.of(run.red), side.of(run.green), side.of(run.blue)}, side.count,
                        pixels + side.first * pixelBytes);
        });
    });
}

/// A picture's pixels without the padding of rows, and one more, which is black and clear.
std::unique_ptr<std::uint8_t[]> packedCopy(const Picture& picture) {
    const std::size_t pixelBytes = picture.bytesPerPixel;
    const std::size_t rowBytes = picture.width * pixelBytes;
    const std::size_t size = rowBytes * picture.height;
    auto copy = platform::makeUnsetArray<std::uint8_t>(size + pixelBytes);
    std::memset(copy.get() + size, 0, pixelBytes);
    for (std::size_t y = 0; y < picture.height; ++y) {
        std::memcpy(copy.get() + y * rowBytes, picture.row(y), rowBytes);
    }
    return copy;
}

// Any setting and size: what is fetched from outside the picture is black.
void correctPartly(const Picture& picture, const Fringing& fringing) {
    const std::size_t width = picture.width;
    const Lens& lens = fringing.lens;
    const auto nowhere = static_cast<std::uint32_t>(picture.pixels());
    const ColumnDistances columns = columnDistances(lens, width);
    const auto copy = packedCopy(picture);
    const std::size_t bands = lensBands(width, picture.height);
    std::vector<std::vector<std::uint32_t>> numbers(bands, std::vector<std::uint32_t>(3 * width));
    platform::parallelBands(
        picture.height, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
            std::uint32_t* const red = numbers[band].data();
            std::uint32_t* const green = red + width;
            std::uint32_t* const blue = green + width;
            for (std::size_t y = begin; y < end; ++y) {
                if (platform::checkpoint(y - begin, end - begin)) return;
                pixelsOfRow(fringing, columns, rowDistance(lens, y),
                            static_cast<std::uint32_t>(width), nowhere, {red, green, blue});
                fetchPixels(copy.get(), picture.layout, {red, green, blue}, width, picture.row(y));
            }
        });
}

void correctFringing(const Picture& picture, float setting) {
    if (picture.layout == PixelLayout::none) return;
    const Fringing fringing = fringingOf(picture.width, picture.height, setting);
    if (lensCoordinatesFit(picture.width, picture.height) && staysInside(fringing)) {
        correctInside(picture, fringing);
    } else {
        correctPartly(picture, fringing);
    }
}

}  // namespace

}  // namespace keladjust

CxImage* fringingFilter(CxImage* image, float fringing) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        if (fringing != 0.0f) keladjust::correctFringing(picture, fringing);
    });
}
