// Sharpen: a four-neighbour Laplacian. What is written at a pixel is the sharpened pixel to its
// left, so the picture's inside moves one pixel to the right.

#include <keladjust/CxImage.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/RawWalk.h"
#include "filters/Rounding.h"
#include "filters/StageForms.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

constexpr std::size_t pixelsPerThread = 1 << 15;

// The inside of one row, `bytes` long: `centre` starts with the pixel left of the first one that is
// sharpened, of which `above` and `below` start with the neighbours.
void sharpenRun(const std::uint8_t* __restrict above, const std::uint8_t* __restrict centre,
                const std::uint8_t* __restrict below, std::size_t step, std::size_t bytes,
                float strength, std::uint8_t* __restrict sharpened) {
    const std::uint8_t* __restrict const middle = centre + step;
    const std::uint8_t* __restrict const right = middle + step;
    for (std::size_t j = 0; j < bytes; ++j) {
        const int difference = 4 * middle[j] - centre[j] - right[j] - above[j] - below[j];
        sharpened[j] =
            clampToByte(static_cast<float>(difference) * strength + static_cast<float>(middle[j]));
    }
}

/// Sharpens in place: a thread keeps the three rows it reads, and the rows next to its own are put
/// aside before any thread writes.
class Sharpener {
public:
    Sharpener(CxImage& image, float strength)
        : image_(image),
          step_(image.bytesPerPixel),
          rowBytes_(std::size_t{image.width} * step_),
          rows_(image.height - 2),
          strength_(strength),
          spaces_(platform::bandCount(rows_, pixelsPerThread / image.width + 1)) {
        for (Workspace& space : spaces_) {
            space.aboveBand.resize(rowBytes_);
            space.belowBand.resize(rowBytes_);
            for (auto* row : {&space.above, &space.centre, &space.below}) {
                row->resize(step_ + rowBytes_);
            }
            space.sharpened.resize(rowBytes_);
        }
    }

    void run() {
        const auto eachBand = [this](auto work) {
            platform::parallelBands(rows_, spaces_.size(),
                                    [&](std::size_t band, std::size_t begin, std::size_t end) {
                                        work(spaces_[band], begin + 1, end + 1);
                                    });
        };
        eachBand([this](Workspace& space, std::size_t begin, std::size_t end) {
            std::memcpy(space.aboveBand.data(), row(begin - 1), rowBytes_);
            std::memcpy(space.belowBand.data(), row(end), rowBytes_);
        });
        eachBand([this](Workspace& space, std::size_t begin, std::size_t end) {
            sharpenRows(space, begin, end);
        });
    }

private:
    /// Storage of one thread. The kept rows begin with the last pixel of the row above theirs,
    /// which counts as the left neighbour of their first.
    struct Workspace {
        std::vector<std::uint8_t> aboveBand;
        std::vector<std::uint8_t> belowBand;
        std::vector<std::uint8_t> above;
        std::vector<std::uint8_t> centre;
        std::vector<std::uint8_t> below;
        std::vector<std::uint8_t> sharpened;
    };

    std::uint8_t* row(std::size_t y) const { return image_.pBits + y * image_.effWidth; }

    void keep(const std::uint8_t* source, const std::vector<std::uint8_t>& rowAbove,
              std::vector<std::uint8_t>& kept) const {
        std::memcpy(kept.data(), rowAbove.data() + rowBytes_, step_);
        std::memcpy(kept.data() + step_, source, rowBytes_);
    }

    void sharpenRows(Workspace& space, std::size_t begin, std::size_t end) const {
        const std::size_t inside = image_.width - 2;
        std::memcpy(space.above.data() + step_, space.aboveBand.data(), rowBytes_);
        keep(row(begin), space.above, space.centre);
        for (std::size_t y = begin; y < end; ++y) {
            keep(y + 1 < end ? row(y + 1) : space.belowBand.data(), space.centre, space.below);
            sharpenRun(space.above.data() + step_, space.centre.data(), space.below.data() + step_,
                       step_, inside * step_, strength_, space.sharpened.data());
            storeChannels({row(y), image_.width, step_, step_ == 4 ? 3 : step_}, 1, inside,
                          space.sharpened.data());
            space.above.swap(space.centre);
            space.centre.swap(space.below);
        }
    }

    CxImage& image_;
    std::size_t step_;
    std::size_t rowBytes_;
    std::size_t rows_;  // without the first and the last
    float strength_;
    std::vector<Workspace> spaces_;
};

// Two-byte pixels hold no channel bytes, and a picture without an inside nothing to sharpen.
bool canSharpen(const CxImage* image) {
    return hasPixels(image) && image->width >= 3 && image->height >= 3 &&
           (image->bytesPerPixel == 1 || image->bytesPerPixel >= 3);
}

}  // namespace

}  // namespace keladjust

CxImage* sharpen(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&] {
        if (amount == 0.0f || !keladjust::canSharpen(image)) return;
        keladjust::Sharpener(*image, amount / 255.0f).run();
    });
}
