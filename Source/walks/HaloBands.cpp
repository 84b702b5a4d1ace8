#include "walks/HaloBands.h"

#include <cstring>

namespace keladjust {

void HaloBands::keepHalo(std::size_t index) {
    const Band own = band(index);
    const Halo& halo = halos_[index];
    std::uint8_t* kept = halo.bytes.get();
    const auto keep = [&](std::size_t begin, std::size_t end) {
        for (std::size_t y = begin; y < end; ++y, kept += rows_.bytes) {
            std::memcpy(kept, rows_[y], rows_.bytes);
        }
    };
    keep(own.begin() - halo.above, own.begin());
    keep(own.end(), own.end() + halo.below);
}

}  // namespace keladjust
