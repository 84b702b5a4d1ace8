#ifndef KELADJUST_FILTERS_DEHAZE_DEHAZEROWS_H
#define KELADJUST_FILTERS_DEHAZE_DEHAZEROWS_H

#include <cstddef>
#include <cstdint>

/// Dehaze's two walks over pixels, compiled for every instruction set and chosen when they run. All
/// of them give the same bytes. A pixel's channels are its first three bytes, or all if it has
/// fewer.
namespace keladjust {

/// About some pixels.
struct Darkness {
    std::uint64_t sum = 0;       ///< of the darkest channels
    std::uint8_t brightest = 0;  ///< of all channels
};

/// The darkest channel of every pixel.
Darkness darkestChannels(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                         std::uint8_t* darkest);

struct Veil {
    float factor;  ///< the part of the mean that may be haze, 0..0.9
    /// What haze looks like where nothing shows through: a half of a whole number, 0.5 to 255, and
    /// not below any mean.
    float light;
};

/// Takes the veil off: the smaller of a pixel's darkest channel and of the haze that the mean of
/// those about it, `means`, may be.
void unveil(std::uint8_t* pixels, std::size_t count, std::size_t step, const std::uint8_t* means,
            Veil veil);

}  // namespace keladjust

#endif
