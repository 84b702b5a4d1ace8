#include "filters/blur/SmallBlur.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "filters/blur/SmallBlurRows.h"
#include "platform/CallScope.h"
#include "walks/ThreadShare.h"

namespace keladjust {

SmallBlur::SmallBlur(const ByteRows& rows, std::size_t pixelBytes,
                     std::optional<std::uint16_t> share)
    : rows_(rows),
      pixelBytes_(pixelBytes),
      share_(share),
      bands_(rows, 1, 2 * bytesPerThread / rows.bytes + 1),
      spaces_(bands_.count()) {
    for (Workspace& space : spaces_) {
        space.row.resize(rows.bytes);
        for (auto& blurred : space.blurred) blurred.resize(rows.bytes);
    }
}

void SmallBlur::run() {
    bands_.run([this](const HaloBands::Band& band) { blurBand(band, spaces_[band.index()]); });
}

void SmallBlur::blurRow(const std::uint8_t* row, Workspace& space, BlurredRows& blurred,
                        std::uint8_t* target) const {
    const std::uint8_t* source = row;
    if (share_) {
        complementBrightened(row, rows_.bytes, pixelBytes_, *share_, space.row.data());
        source = space.row.data();
    } else if (target != nullptr && row == target) {
        // The last one, which goes on below.
        std::memcpy(space.row.data(), row, rows_.bytes);
        source = space.row.data();
    }
    smallBlurRow({source, !share_, blurred.above, blurred.middle, blurred.below, target},
                 rows_.bytes, pixelBytes_);
    // The row below becomes the middle one, and the one above makes room.
    std::swap(blurred.above, blurred.middle);
    std::swap(blurred.middle, blurred.below);
}

void SmallBlur::blurBand(const HaloBands::Band& band, Workspace& space) const {
    const std::size_t bottom = rows_.height - 1;
    BlurredRows blurred{space.blurred[0].data(), space.blurred[1].data(), space.blurred[2].data()};
    blurRow(band.row(band.begin() > 0 ? band.begin() - 1 : 0), space, blurred, nullptr);
    blurRow(band.row(band.begin()), space, blurred, nullptr);
    for (std::size_t y = band.begin(); y < band.end(); ++y) {
        if (platform::checkpoint(y - band.begin(), band.end() - band.begin())) return;
        blurRow(band.row(std::min(y + 1, bottom)), space, blurred, rows_[y]);
    }
}

}  // namespace keladjust
