#include "walks/InPlaceBands.h"

#include <algorithm>
#include <cstring>

namespace keladjust {

InPlaceBands::InPlaceBands(const ByteRows& rows, std::size_t reach, std::size_t grain)
    : rows_(rows), reach_(reach), seen_(platform::bandCount(rows.height, grain)) {
    for (std::size_t i = 0; i < count(); ++i) {
        const Band band(*this, i);
        seen_[i].resize((above(band) + below(band)) * rows_.bytes);
    }
}

void InPlaceBands::keepSeenRows() {
    for (std::size_t i = 0; i < count(); ++i) {
        const Band band(*this, i);
        std::uint8_t* kept = seen_[i].data();
        const auto keep = [&](std::size_t begin, std::size_t end) {
            for (std::size_t y = begin; y < end; ++y, kept += rows_.bytes) {
                std::memcpy(kept, rows_[y], rows_.bytes);
            }
        };
        keep(band.begin() - above(band), band.begin());
        keep(band.end(), band.end() + below(band));
    }
}

std::size_t InPlaceBands::above(const Band& band) const {
    return std::min(reach_, band.begin());
}

std::size_t InPlaceBands::below(const Band& band) const {
    return std::min(reach_, rows_.height - band.end());
}

const std::uint8_t* InPlaceBands::Band::row(std::size_t y) const {
    if (y >= begin_ && y < end_) return bands_.rows_[y];
    const std::size_t above = bands_.above(*this);
    const std::size_t kept = y < begin_ ? y - (begin_ - above) : above + (y - end_);
    return bands_.seen_[index_].data() + kept * bands_.rows_.bytes;
}

}  // namespace keladjust
