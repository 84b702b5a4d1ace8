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
#include "ImageFormat/PixelSpan.h"
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

/// Filters a plane whose shape has blocks, all but the last 8 rows and columns. The storage is
/// taken at once, so that a plane for which memory is short can be left whole.
class PlaneFilter {
public:
    explicit PlaneFilter(const PlaneShape& shape)
        : shape_(shape),
          bands_(platform::bandCount(
              shape.filteredRows(),
              std::max(leastBandRows, pixelsPerFilterThread / shape.width + 1))),
          halos_(bands_ * 2 * dctHalo * shape.width),
          carried_(shape.filteredRows() * dctSize) {}

    void run(const std::uint8_t* source, std::uint8_t* destination, float sigma) {
        // Bands write into what their neighbours read, so that is copied first.
        for (std::size_t band = 0; band < bands_; ++band) copyHalos(source, band);
        platform::parallelBands(bands_, bands_, [&](std::size_t, std::size_t first, std::size_t) {
            filterBand(bandOf(first, source, destination, 3.0f * sigma));
        });
    }

private:
    std::size_t firstRow(std::size_t band) const { return band * shape_.filteredRows() / bands_; }

    std::uint8_t* halo(std::size_t band, std::size_t side) {
        return halos_.data() + (2 * band + side) * dctHalo * shape_.width;
    }

    void copyHalos(const std::uint8_t* source, std::size_t band) {
        for (std::size_t i = 0; i < dctHalo; ++i) {
            const auto copy = [&](std::size_t row, std::size_t side) {
                std::copy_n(source + row * shape_.stride, shape_.width,
                            halo(band, side) + i * shape_.width);
            };
            if (band != 0) copy(firstRow(band) - dctHalo + i, 0);
            copy(firstRow(band + 1) + i, 1);
        }
    }

    DctBand bandOf(std::size_t band, const std::uint8_t* source, std::uint8_t* destination,
                   float threshold) {
        DctBand result;
        result.source = source;
        result.destination = destination;
        result.stride = shape_.stride;
        result.width = shape_.width;
        result.begin = firstRow(band);
        result.end = firstRow(band + 1);
        result.above = halo(band, 0);
        result.below = halo(band, 1);
        result.carried = carried_.data() + result.begin * dctSize;
        result.threshold = threshold;
        return result;
    }

    PlaneShape shape_;
    std::size_t bands_;
    std::vector<std::uint8_t> halos_;
    std::vector<float> carried_;
};

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
    if (shape.hasBlocks()) PlaneFilter(shape).run(source, destination, sigma);
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
                                    body(static_cast<unsigned>(y));
                                }
                            });
}

void denoise(CxImage& image, float setting, ColourSpace space) {
    const PlaneShape shape{image.width, image.height,
                           static_cast<std::size_t>(exactRowBytes(image.width, 8))};
    Planes planes;
    for (auto& plane : planes) plane.resize(shape.stride * shape.height);

    forEachRow(shape, [&](unsigned y) {
        const auto row = [&](std::size_t i) { return planes[i].data() + shape.stride * y; };
        splitRow(image, y, space, {row(0), row(1), row(2)});
    });
    const float sigma = setting * 0.15f;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        const platform::ProgressPart part(i, planes.size());
        denoisePlane(shape, planes[i].data(), planes[i].data(), sigma);
    }
    forEachRow(shape, [&](unsigned y) {
        const auto row = [&](std::size_t i) { return planes[i].data() + shape.stride * y; };
        joinRow(image, y, space, {row(0), row(1), row(2)});
    });
}

/// Grey pictures have no planes to speak of, and pairs of depth and format without a meaning no
/// pixels to change.
bool hasColourPlanes(const CxImage* image) {
    if (!hasPixels(image)) return false;
    const PixelLayout layout = layoutOf(*image);
    return layout != PixelLayout::none && layout != PixelLayout::gray8;
}

CxImage* denoiseForm(CxImage* image, float setting, ColourSpace space) noexcept {
    return exportedForm(image, [&] {
        if (setting != 0.0f && hasColourPlanes(image)) denoise(*image, setting, space);
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
    keladjust::exportedForm(nullptr,
                            [&] { keladjust::denoisePlane(shape, source, destination, sigma); });
}
