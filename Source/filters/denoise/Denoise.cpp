// Noise reduction by sliding-window DCT thresholding, of the colour planes and of the planes of
// hue, saturation and lightness.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ImageFormat/ChannelPlanes.h"
#include "ImageFormat/Geometry.h"
#include "filters/denoise/DctThreshold.h"
#include "platform/CallScope.h"
#include "platform/Parallel.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

// Below these a thread costs more than it saves; a band must hold the rows its neighbours read.
constexpr std::size_t pixelsPerFilterThread = 1 << 13;
constexpr std::size_t leastBandRows = 2 * dctHalo;
constexpr std::size_t pixelsPerSplitThread = 1 << 16;

/// The measures of a plane of bytes.
struct PlaneShape {
    std::size_t width;
    std::size_t height;
    std::size_t stride;

    bool hasBlocks() const { return width > dctSize && height > dctSize; }
    std::size_t filteredRows() const { return height - dctSize; }
};

/// Filters a plane whose shape has blocks, all but the last 8 rows and columns. Source and
/// destination may be one and the same.
void filterPlane(const PlaneShape& shape, const std::uint8_t* source, std::uint8_t* destination,
                 float sigma) {
    const std::size_t grain = std::max(leastBandRows, pixelsPerFilterThread / shape.width + 1);
    HaloBands bands({source, shape.stride, shape.width, shape.height}, shape.filteredRows(),
                    platform::bandCount(shape.filteredRows(), grain), [](std::size_t, std::size_t) {
                        return Reach{dctHalo, dctHalo};
                    });
    std::vector<float> carried(shape.filteredRows() * dctSize);
    bands.run([&](const HaloBands::Band& band) {
        filterBand({band, destination, shape.stride, shape.width,
                    carried.data() + band.begin() * dctSize, 3.0f * sigma});
    });
}

/// Fills the last 8 rows and columns. They are read as if rows had no padding: where a row has
/// some, pixels come from further left or from the row above, and in place they may be pixels that
/// have already been written.
void copyEdges(const PlaneShape& shape, const std::uint8_t* source, std::uint8_t* destination) {
    for (std::size_t y = 0; y < shape.height; ++y) {
        const bool filtered = shape.hasBlocks() && y < shape.filteredRows();
        for (std::size_t x = filtered ? shape.width - dctSize : 0; x < shape.width; ++x) {
            destination[y * shape.stride + x] = source[y * shape.width + x];
        }
    }
}

void denoisePlane(const PlaneShape& shape, const std::uint8_t* source, std::uint8_t* destination,
                  float sigma) {
    if (shape.hasBlocks()) filterPlane(shape, source, destination, sigma);
    // Every pixel that an edge is filled from stands before it in the buffer, so filtering all the
    // others first does not change what is read.
    copyEdges(shape, source, destination);
}

using Planes = std::array<std::vector<std::uint8_t>, 3>;

/// Calls `body(y)` for every row, spread over threads.
template <class Body>
void forEachRow(const PlaneShape& shape, Body body) {
    const std::size_t rowsPerThread = pixelsPerSplitThread / shape.width + 1;
    platform::parallelBands(shape.height, platform::bandCount(shape.height, rowsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                for (std::size_t y = begin; y < end; ++y) {
                                    if (platform::checkpoint(0, 1)) return;
                                    body(y);
                                }
                            });
}

void denoise(const Picture& picture, float setting, ColourSpace space) {
    const PlaneShape shape{picture.width, picture.height,
                           static_cast<std::size_t>(paddedRowBytes(picture.width))};
    Planes planes;
    for (auto& plane : planes) plane.resize(shape.stride * shape.height);

    forEachRow(shape, [&](std::size_t y) {
        const auto row = [&](std::size_t i) { return planes[i].data() + shape.stride * y; };
        splitRow(picture.layout, picture.row(y), picture.width, space, {row(0), row(1), row(2)});
    });
    const float sigma = setting * 0.15f;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        const platform::ProgressPart part(i, planes.size());
        denoisePlane(shape, planes[i].data(), planes[i].data(), sigma);
    }
    forEachRow(shape, [&](std::size_t y) {
        const auto row = [&](std::size_t i) { return planes[i].data() + shape.stride * y; };
        joinRow(picture.layout, {row(0), row(1), row(2)}, picture.width, space, picture.row(y));
    });
}

// An image that owns its pixels is joined into a fresh buffer, whose padding is zeros.
void clearPadding(const Picture& picture) {
    const std::size_t rowBytes = picture.width * picture.bytesPerPixel;
    for (std::size_t y = 0; y < picture.height; ++y) {
        std::fill(picture.row(y) + rowBytes, picture.row(y) + picture.stride, std::uint8_t{0});
    }
}

/// Grey pictures have no planes to speak of, and pairs of depth and format without a meaning no
/// pixels to change.
bool hasColourPlanes(const Picture& picture) {
    return picture.layout != PixelLayout::none && picture.layout != PixelLayout::gray8;
}

CxImage* denoiseForm(CxImage* image, float setting, ColourSpace space) noexcept {
    return exportedForm(image, [&](const Picture& picture) {
        if (setting == 0.0f || !hasColourPlanes(picture)) return;
        denoise(picture, setting, space);
        if (image->ownsBits) clearPadding(picture);
    });
}

}  // namespace

}  // namespace keladjust

CxImage* deNoiseRGB(CxImage* image, float amount) {
    return keladjust::denoiseForm(image, amount, keladjust::ColourSpace::rgb);
}

CxImage* deNoiseLumiance(CxImage* image, float amount) {
    return keladjust::denoiseForm(image, amount, keladjust::ColourSpace::hsl);
}

void dctDenoisePlane(const unsigned char* source, unsigned char* destination, int width, int height,
                     int stride, float sigma) {
    if (source == nullptr || destination == nullptr) return;
    if (width < 1 || height < 1 || stride < width) return;
    const keladjust::PlaneShape shape{static_cast<std::size_t>(width),
                                      static_cast<std::size_t>(height),
                                      static_cast<std::size_t>(stride)};
    keladjust::guarded([&] { keladjust::denoisePlane(shape, source, destination, sigma); });
}
