#ifndef KELADJUST_FILTERS_DENOISE_DCTTHRESHOLD_H
#define KELADJUST_FILTERS_DENOISE_DCTTHRESHOLD_H

#include <cstddef>
#include <cstdint>

#include "walks/HaloBands.h"

/// Sliding-window hard thresholding in the domain of the 8 x 8 discrete cosine transform: the part
/// that does the work, compiled for every instruction set and chosen when it runs.
///
/// Every block of 8 x 8 pixels that begins at least 8 pixels before the right and the lower edge is
/// transformed, loses its small coefficients and is transformed back; a pixel becomes the mean of
/// what all blocks over it say. The transform is the orthonormal DCT-II in the scaled factoring of
/// Arai, Agui and Nakajima (1988): butterflies with five multiplications, and one scale for each
/// coefficient that needs no step of its own, because it goes into the thresholds and into one
/// multiplication between forward and inverse transform. The inverse is the transposed flow graph.
///
/// The order of operations is fixed, because sums of floats show it, and is the same for every
/// vector length, tile, band and number of threads:
/// 1. row transforms, once for each column position and row, scaled;
/// 2. for each block, from the top down, column transforms, thresholds, inverse column transforms,
///    and the sum over the (up to 8) blocks that cover a row, the inverse being linear;
/// 3. for each column position and row, one scaled inverse row transform of that sum;
/// 4. for each pixel, the sum over the (up to 8) column positions that cover it, from the left;
/// 5. that sum divided by the number of blocks, clamped and truncated.
///
/// A flat plane passes through all of it in whole numbers but for one factor, which is a hair too
/// large rather than too small, so it comes out as it went in.
namespace keladjust {

/// The edge of a block, and the width of the bands at the right and lower edge that stay as they
/// are.
constexpr std::size_t dctSize = 8;

/// Rows that a band reads beyond each of its ends.
constexpr std::size_t dctHalo = dctSize - 1;

/// Some rows of a plane to filter, and what that takes.
struct DctBand {
    /// Of the plane without its last 8 rows; sees dctHalo rows beyond its own.
    HaloBands::Band rows;
    std::uint8_t* destination;  ///< the first row of a plane, perhaps the one the rows are of
    std::size_t stride;         ///< bytes per row of the destination
    std::size_t width;          ///< of the plane, more than dctSize
    float* carried;             ///< working storage: dctSize floats for each row to write
    float threshold;            ///< coefficients of a smaller magnitude become 0; NaN keeps all
};

/// Filters the rows of a band, all but their last 8 columns.
void filterBand(const DctBand& band);

}  // namespace keladjust

#endif
