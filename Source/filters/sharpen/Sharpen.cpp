// Sharpen: a four-neighbour Laplacian. What is written at a pixel is the sharpened pixel to its
// left, so the picture's inside moves one pixel to the right.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "filters/sharpen/SharpenRows.h"
#include "platform/CallScope.h"
#include "walks/HaloBands.h"
#include "walks/StageForms.h"
#include "walks/ThreadShare.h"

namespace keladjust {

namespace {

/// Sharpens in place: a thread keeps the row it is about to write and the one above it.
class Sharpener {
public:
    Sharpener(const Picture& picture, float strength)
        : rows_(rowsOf(picture)),
          step_(picture.bytesPerPixel),
          strength_(strength),
          bands_(rows_, 1, bytesPerThread / rows_.bytes + 1),
          spaces_(bands_.count()) {
        for (Workspace& space : spaces_) {
            space.above.resize(step_ + rows_.bytes);
            space.centre.resize(step_ + rows_.bytes);
        }
    }

    void run() {
        bands_.run(
            [this](const HaloBands::Band& band) { sharpenBand(band, spaces_[band.index()]); });
    }

private:
    /// Storage of one thread. The kept rows begin with the last pixel of the row above theirs,
    /// which counts as the left neighbour of their first.
    struct Workspace {
        std::vector<std::uint8_t> above;
        std::vector<std::uint8_t> centre;
    };

    // All rows of the band but the picture's first and last.
    void sharpenBand(const HaloBands::Band& band, Workspace& space) const {
        const std::size_t begin = std::max<std::size_t>(band.begin(), 1);
        const std::size_t end = std::min(band.end(), rows_.height - 1);
        if (begin >= end) return;
        std::memcpy(space.above.data() + step_, band.row(begin - 1), rows_.bytes);
        for (std::size_t y = begin; y < end; ++y) {
            if (platform::checkpoint(y - begin, end - begin)) return;
            std::memcpy(space.centre.data(), space.above.data() + rows_.bytes, step_);
            std::memcpy(space.centre.data() + step_, band.row(y), rows_.bytes);
            sharpenRow(space.above.data() + step_, space.centre.data() + step_, band.row(y + 1),
                       rows_.bytes - 2 * step_, step_, strength_, rows_[y] + step_);
            space.above.swap(space.centre);
        }
    }

    ByteRows rows_;
    std::size_t step_;
    float strength_;
    HaloBands bands_;
    std::vector<Workspace> spaces_;
};

// Two-byte pixels hold no channel bytes, and a picture without an inside nothing to sharpen.
bool canSharpen(const Picture& picture) {
    return picture.width >= 3 && picture.height >= 3 &&
           (picture.bytesPerPixel == 1 || picture.bytesPerPixel >= 3);
}

}  // namespace

}  // namespace keladjust

CxImage* sharpen(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        if (amount == 0.0f || !keladjust::canSharpen(picture)) return;
        keladjust::Sharpener(picture, amount / 255.0f).run();
    });
}
