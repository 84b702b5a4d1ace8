// Lateral chromatic aberration: red, green and blue of every pixel fetched from different places
// along the line to the picture's centre.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/PixelSpan.h"
#include "filters/lens/LensRows.h"
#include "filters/lens/LensSources.h"
#include "platform/CallScope.h"
#include "platform/Parallel.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

rows::Fringing fringingOf(unsigned pictureWidth, unsigned pictureHeight, float setting) {
    const float f = setting / 100.0f;
    const float offset = f * 0.03f;
    const auto width = static_cast<float>(pictureWidth);
    const auto height = static_cast<float>(pictureHeight);
    // The margin at the right and bottom edges, which in a picture of one column or row leaves
    // nothing inside.
    const float margin = f > 0.0f ? 2.0f : 1.0f;
    return {.lens = {.strength = f,
                     .power = rows::fringingPower,
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
bool staysInside(const rows::Fringing& fringing) {
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
            return rows::fetchFringed(originals, red, green, blue, count, pixels);
        case PixelLayout::bgra32:
            return rows::fetchFringed(originals, blue, green, red, count, pixels);
        case PixelLayout::rgb16:
        case PixelLayout::bgr16:
            return fetchWords(originals, layout, sources, count, pixels);
        case PixelLayout::none:
            break;
    }
}

void correctInside(CxImage& image, PixelLayout layout, const rows::Fringing& fringing) {
    const std::size_t width = image.width;
    const std::size_t pixelBytes = bytesPerPixelOf(layout);
    const rows::Lens& lens = fringing.lens;
    const rows::ColumnDistances columns = mirroredDistances(lens, width);
    const OriginalRows rows{image.pBits, image.effWidth, width * pixelBytes, image.height};
    const auto reach = [&](std::size_t begin, std::size_t end) {
        const auto [smallest, largest] =
            std::minmax({1.0f, fringing.redFactor, fringing.blueFactor});
        return lensReach(lens, smallest, largest, fringing.lastY, begin, end);
    };
    changeLensRows(rows, width, reach, [&](std::size_t y, const RowWindow& window) {
        rows::RowRing ring = window.ring(width);
        ring.bottom = std::clamp(static_cast<std::int32_t>(fringing.lastY), ring.top, ring.bottom);
        const float distance = rowDistance(lens, y);
        std::uint8_t* const pixels = image.pBits + y * image.effWidth;
        rows::FringingRun run;
        const auto compute = [&](std::size_t first, std::size_t count) {
            rows::fringedRun(fringing, columns.data() + first, count, distance, ring, run);
        };
        forEachMirroredRun(width, compute, [&](const RunColumns& side) {
            fetchPixels(window.bytes(), layout,
                        {side.of(run.red), side.of(run.green), side.of(run.blue)}, side.count,
                        pixels + side.first * pixelBytes);
        });
    });
}

/// A picture's pixels without the padding of rows, and one more, which is black and clear.
std::unique_ptr<std::uint8_t[]> packedCopy(const CxImage& image, std::size_t pixelBytes) {
    const std::size_t rowBytes = image.width * pixelBytes;
    const std::size_t size = rowBytes * image.height;
    auto copy = std::make_unique_for_overwrite<std::uint8_t[]>(size + pixelBytes);
    std::memset(copy.get() + size, 0, pixelBytes);
    for (std::size_t y = 0; y < image.height; ++y) {
        std::memcpy(copy.get() + y * rowBytes, image.pBits + y * image.effWidth, rowBytes);
    }
    return copy;
}

// Any setting and size: what is fetched from outside the picture is black.
void correctPartly(CxImage& image, PixelLayout layout, const rows::Fringing& fringing) {
    const std::size_t width = image.width;
    const rows::Lens& lens = fringing.lens;
    const auto nowhere = static_cast<std::uint32_t>(width * image.height);
    const rows::ColumnDistances columns = columnDistances(lens, width);
    const auto copy = packedCopy(image, bytesPerPixelOf(layout));
    const std::size_t bands = lensBands(width, image.height);
    std::vector<std::vector<std::uint32_t>> numbers(bands, std::vector<std::uint32_t>(3 * width));
    platform::parallelBands(image.height, bands,
                            [&](std::size_t band, std::size_t begin, std::size_t end) {
                                std::uint32_t* const red = numbers[band].data();
                                std::uint32_t* const green = red + width;
                                std::uint32_t* const blue = green + width;
                                for (std::size_t y = begin; y < end; ++y) {
                                    if (platform::checkpoint(y - begin, end - begin)) return;
                                    rows::pixelsOfRow(fringing, columns, rowDistance(lens, y),
                                                      image.width, nowhere, {red, green, blue});
                                    fetchPixels(copy.get(), layout, {red, green, blue}, width,
                                                image.pBits + y * image.effWidth);
                                }
                            });
}

void correctFringing(CxImage& image, float setting) {
    const PixelLayout layout = layoutOf(image);
    if (!hasPixels(&image) || layout == PixelLayout::none) return;
    const rows::Fringing fringing = fringingOf(image.width, image.height, setting);
    if (lensCoordinatesFit(image.width, image.height) && staysInside(fringing)) {
        correctInside(image, layout, fringing);
    } else {
        correctPartly(image, layout, fringing);
    }
}

}  // namespace

}  // namespace keladjust

CxImage* fringingFilter(CxImage* image, float fringing) {
    return keladjust::exportedForm(image, [&] {
        if (image != nullptr && fringing != 0.0f) keladjust::correctFringing(*image, fringing);
    });
}
