#include "filters/SmallBlur.h"

#include <algorithm>
#include <cstring>

#include "filters/rows/Rows.h"

namespace keladjust {

namespace {

// Below this many bytes a thread costs more than it saves.
constexpr std::size_t bytesPerThread = 1 << 18;

}  // namespace

SmallBlur::SmallBlur(const ByteRows& rows, std::size_t pixelBytes, std::optional<ByteScale> gain)
    : rows_(rows),
      pixelBytes_(pixelBytes),
      gain_(gain),
      bands_(rows, 1, bytesPerThread / rows.bytes + 1),
      spaces_(bands_.count()) {
    for (Workspace& space : spaces_) {
        space.row.resize(rows.bytes + 2 * pixelBytes);
        for (auto& blurred : space.blurred) blurred.resize(rows.bytes);
    }
}

void SmallBlur::run() {
    bands_.run([this](const InPlaceBands::Band& band) { blurBand(band, spaces_[band.index()]); });
}

void SmallBlur::blurAlong(const std::uint8_t* row, Workspace& space, std::uint8_t* blurred) const {
    std::uint8_t* const first = space.row.data() + pixelBytes_;
    if (gain_) {
        rows::complementScaled(row, rows_.bytes, pixelBytes_, *gain_, first);
    } else {
        rows::complement(row, rows_.bytes, first);
    }
    std::memcpy(first - pixelBytes_, first, pixelBytes_);
    std::memcpy(first + rows_.bytes, first + rows_.bytes - pixelBytes_, pixelBytes_);
    rows::smallBlurAlong(first, rows_.bytes, pixelBytes_, blurred);
}

void SmallBlur::blurBand(const InPlaceBands::Band& band, Workspace& space) const {
    const std::size_t bottom = rows_.height - 1;
    std::uint8_t* above = space.blurred[0].data();
    std::uint8_t* middle = space.blurred[1].data();
    std::uint8_t* below = space.blurred[2].data();
    blurAlong(band.row(band.begin() > 0 ? band.begin() - 1 : 0), space, above);
    blurAlong(band.row(band.begin()), space, middle);
    for (std::size_t y = band.begin(); y < band.end(); ++y) {
        blurAlong(band.row(std::min(y + 1, bottom)), space, below);
        rows::smallBlurAcross(above, middle, below, rows_.bytes, pixelBytes_, rows_[y]);
        // The row below becomes the middle one, and the one above makes room.
        std::swap(above, middle);
        std::swap(middle, below);
    }
}

}  // namespace keladjust
