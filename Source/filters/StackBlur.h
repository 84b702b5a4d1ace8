#ifndef KELADJUST_FILTERS_STACKBLUR_H
#define KELADJUST_FILTERS_STACKBLUR_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace keladjust {

/// What stands for a division by (radius + 1)^2: a multiplication and a shift to the right.
struct StackBlurScale {
    std::uint32_t multiplier;
    unsigned shift;
};

/// The published entry of M. Klingemann's tables for a radius of 0..254.
constexpr StackBlurScale stackBlurScale(unsigned radius) {
    // The largest shift whose multiplier, rounded up, stays within the tables' 512.
    const std::uint64_t divisor = std::uint64_t{radius + 1} * (radius + 1);
    const auto multiplier = [divisor](unsigned shift) {
        return ((std::uint64_t{1} << shift) + divisor - 1) / divisor;
    };
    unsigned shift = 9;
    while (multiplier(shift + 1) <= 512) ++shift;
    return {static_cast<std::uint32_t>(multiplier(shift)), shift};
}

/// Stack Blur of one geometry at one radius. The constructor allocates all that the passes need, so
/// that a caller can have it before the first pixel changes.
class StackBlur {
public:
    /// Rows are padded to a multiple of four bytes. Other than 1, 3 or 4 bytes per pixel, a radius
    /// outside 1..254 and a picture without pixels give a blur that does nothing.
    StackBlur(std::size_t width, std::size_t height, std::size_t bytesPerPixel, int radius);

    void alongRows(std::uint8_t* bits);
    void alongColumns(std::uint8_t* bits);

private:
    /// Equally long lines side by side: lane j of sample i is byte i * stride + j.
    struct Lines {
        std::uint8_t* first;
        std::size_t stride;
        std::size_t length;
        std::size_t lanes;
    };

    /// Working storage of one thread.
    struct Workspace {
        std::vector<std::uint32_t> sum;
        std::vector<std::uint32_t> entering;
        std::vector<std::uint32_t> leaving;
        std::vector<std::uint8_t> blurred;
        std::vector<std::uint8_t> replaced;  ///< the last radius + 1 samples of every lane
        std::vector<std::uint8_t> tile;      ///< a few rows, turned on their side
    };

    void blur(const Lines& lines, Workspace& space) const;
    void blurRows(std::uint8_t* rows, std::size_t count, Workspace& space) const;

    bool active_;
    std::size_t width_;
    std::size_t height_;
    std::size_t pixelBytes_;
    std::size_t rowBytes_;
    std::size_t radius_;
    std::size_t rowsPerTile_ = 1;
    std::size_t columnsPerStripe_ = 1;
    std::size_t rowBands_ = 1;
    std::size_t columnBands_ = 1;
    std::vector<Workspace> spaces_;
};

}  // namespace keladjust

#endif
