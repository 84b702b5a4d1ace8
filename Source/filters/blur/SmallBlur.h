#ifndef KELADJUST_FILTERS_BLUR_SMALLBLUR_H
#define KELADJUST_FILTERS_BLUR_SMALLBLUR_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "walks/HaloBands.h"

namespace keladjust {

/// Stack Blur of radius 1: both passes in one walk over the picture, in place. The constructor
/// allocates all that it needs, so that a caller can have it before the first pixel changes.
class SmallBlur {
public:
    static constexpr int radius = 1;

    /// Pixels of 1, 3 or 4 bytes; colours of 4-byte pixels are limited to alpha.
    /// @param share 65536ths of themselves that are added to colours before
    SmallBlur(const ByteRows& rows, std::size_t pixelBytes,
              std::optional<std::uint16_t> share = std::nullopt);

    void run();

private:
    /// Storage of one thread: a row that does not come from the picture, and three rows blurred
    /// along.
    struct Workspace {
        std::vector<std::uint8_t> row;
        std::vector<std::uint8_t> blurred[3];
    };
    struct BlurredRows {
        std::uint8_t* above;
        std::uint8_t* middle;
        std::uint8_t* below;
    };

    void blurRow(const std::uint8_t* row, Workspace& space, BlurredRows& blurred,
                 std::uint8_t* target) const;
    void blurBand(const HaloBands::Band& band, Workspace& space) const;

    ByteRows rows_;
    std::size_t pixelBytes_;
    std::optional<std::uint16_t> share_;
    HaloBands bands_;
    std::vector<Workspace> spaces_;
};

}  // namespace keladjust

#endif
