#ifndef KELADJUST_TESTS_MODELS_DENOISE_DENOISE_H
#define KELADJUST_TESTS_MODELS_DENOISE_DENOISE_H

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace keladjust::test {

using Block = std::array<std::array<float, 8>, 8>;

/// The 8-point orthonormal DCT-II as a matrix, row k the cosine of k half periods.
inline const Block& dctMatrix() {
    static const Block matrix = [] {
        // c[k] is cos(k pi / 16) / 2.
        constexpr float c[8] = {0.5f,       0.4903926f, 0.4619398f, 0.4157348f,
                                0.3535534f, 0.2777851f, 0.1913417f, 0.0975452f};
        Block m;
        for (int k = 0; k < 8; ++k) {
            for (int n = 0; n < 8; ++n) {
                const int angle = (2 * n + 1) * k % 32;  // in sixteenths of pi
                const int folded = angle > 16 ? 32 - angle : angle;
                const float value = folded > 8 ? -c[16 - folded] : folded == 8 ? 0.0f : c[folded];
                const auto row = static_cast<std::size_t>(k);
                m[row][static_cast<std::size_t>(n)] = k == 0 ? c[4] : value;
            }
        }
        return m;
    }();
    return matrix;
}

/// matrix x block, or with `transposed` its transpose x block.
inline Block columnsTransformed(const Block& block, bool transposed) {
    const Block& m = dctMatrix();
    Block result{};
    for (std::size_t k = 0; k < 8; ++k) {
        for (std::size_t u = 0; u < 8; ++u) {
            for (std::size_t n = 0; n < 8; ++n) {
                result[k][u] += (transposed ? m[n][k] : m[k][n]) * block[n][u];
            }
        }
    }
    return result;
}

inline Block transposedBlock(const Block& block) {
    Block result;
    for (std::size_t i = 0; i < 8; ++i) {
        for (std::size_t j = 0; j < 8; ++j) result[j][i] = block[i][j];
    }
    return result;
}

inline Block rowsTransformed(const Block& block, bool transposed) {
    return transposedBlock(columnsTransformed(transposedBlock(block), transposed));
}

/// The filtered values of a plane with unpadded rows, block by block; the last 8 rows and columns
/// mean nothing.
inline std::vector<std::uint8_t> filteredModel(const std::vector<std::uint8_t>& plane,
                                               std::size_t width, std::size_t height, float sigma) {
    const float threshold = 3.0f * sigma;
    std::vector<float> sums(width * height);
    std::vector<float> weights(width * height);
    for (std::size_t x = 0; x + 8 < width; ++x) {
        for (std::size_t y = 0; y + 8 < height; ++y) {
            Block block;
            for (std::size_t i = 0; i < 8; ++i) {
                for (std::size_t j = 0; j < 8; ++j) {
                    block[i][j] = static_cast<float>(plane[(y + i) * width + x + j]);
                }
            }
            block = columnsTransformed(rowsTransformed(block, false), false);
            for (auto& row : block) {
                for (float& coefficient : row) {
                    if (std::fabs(coefficient) < threshold) coefficient = 0;
                }
            }
            block = rowsTransformed(columnsTransformed(block, true), true);
            for (std::size_t i = 0; i < 8; ++i) {
                for (std::size_t j = 0; j < 8; ++j) {
                    sums[(y + i) * width + x + j] += block[i][j];
                    weights[(y + i) * width + x + j] += 1.0f;
                }
            }
        }
    }
    std::vector<std::uint8_t> result(width * height);
    for (std::size_t i = 0; i < result.size(); ++i) {
        const float mean = weights[i] > 0 ? sums[i] / weights[i] : 0.0f;
        result[i] = static_cast<std::uint8_t>(mean > 0 ? (mean < 255 ? mean : 255.0f) : 0.0f);
    }
    return result;
}

/// Writes a plane of padded rows in place, row by row: `filtered` (unpadded) where blocks reach,
/// elsewhere the byte that now stands at the place of the pixel in rows without padding.
inline void writeInPlaceModel(std::vector<std::uint8_t>& plane, std::size_t width,
                              std::size_t height, std::size_t stride,
                              const std::vector<std::uint8_t>& filtered) {
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const bool reached = x + 8 < width && y + 8 < height;
            plane[y * stride + x] = reached ? filtered[y * width + x] : plane[y * width + x];
        }
    }
}

}  // namespace keladjust::test

#endif
