// Dehaze: a veil estimated from the darkest channel about each pixel and taken off, or, for
// negative settings, an even white one laid over.

#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include "arithmetic/Rounding.h"
#include "filters/dehaze/DehazeRows.h"
#include "filters/dehaze/MeanWindow.h"
#include "platform/CallScope.h"
#include "platform/LargePages.h"
#include "platform/Parallel.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"
#include "walks/ThreadShare.h"

namespace keladjust {

namespace {

void mean15(const std::uint8_t* source, std::uint8_t* destination, std::size_t width,
            std::size_t height) {
    const std::size_t bands = platform::bandCount(height, pixelsPerThread / width + 1);
    std::vector<MeanWindow> windows(bands, MeanWindow(width));
    platform::parallelBands(height, bands,
                            [&](std::size_t band, std::size_t begin, std::size_t end) {
                                MeanWindow& window = windows[band];
                                window.beginAt(begin);
                                const auto row = [&](std::size_t y) { return source + y * width; };
                                for (std::size_t y = begin; y < end; ++y) {
                                    window.moveTo(y, height, row, row);
                                    window.means(destination + y * width);
                                }
                            });
}

// The part of a mean that may be haze; the darkest channel bounds it. Factors below 0 leave none.
ByteTable hazeTable(float factor) {
    ByteTable table;
    for (unsigned mean = 0; mean < table.size(); ++mean) {
        table[mean] = clampToByte(static_cast<float>(mean) * factor);
    }
    return table;
}

std::uint8_t largestByte(const std::uint8_t* bytes, std::size_t count) {
    constexpr std::size_t run = 4096;  // between two looks whether the end is reached
    std::uint8_t largest = 0;
    for (std::size_t i = 0; i < count && largest < 255; i += run) {
        const std::size_t end = std::min(count, i + run);
        for (std::size_t j = i; j < end; ++j) largest = std::max(largest, bytes[j]);
    }
    return largest;
}

/// What the haze of a picture is judged by.
struct Haze {
    std::unique_ptr<std::uint8_t[]> means;  ///< of the darkest channels about every pixel
    std::uint64_t sum = 0;                  ///< of the darkest channels
    std::uint8_t deepest = 0;               ///< of the means
    std::uint8_t brightest = 0;             ///< of all channels
};

/// Judges the rows of one band. The darkest channels are kept only as long as the window of the
/// mean sees them.
class HazeBand {
public:
    explicit HazeBand(std::size_t width)
        : width_(width), darkest_(keptRows * width), window_(width) {}

    void judge(const RawWalk& walk, std::size_t height, std::size_t begin, std::size_t end,
               std::uint8_t* means) {
        const auto entering = [&](std::size_t y) {
            const Darkness darkness = darkestChannels(walk.first + y * width_ * walk.step, width_,
                                                      walk.step, darkestOfRow(y));
            if (y >= begin && y < end) {
                sum += darkness.sum;
                brightest = std::max(brightest, darkness.brightest);
            }
            return darkestOfRow(y);
        };
        const auto leaving = [&](std::size_t y) { return darkestOfRow(y); };
        window_.beginAt(begin);
        for (std::size_t y = begin; y < end; ++y) {
            if (platform::checkpoint(y - begin, 2 * (end - begin))) return;
            window_.moveTo(y, height, entering, leaving);
            window_.means(means + y * width_);
            deepest = std::max(deepest, largestByte(means + y * width_, width_));
        }
    }

    std::uint64_t sum = 0;
    std::uint8_t deepest = 0;
    std::uint8_t brightest = 0;

private:
    static constexpr std::size_t keptRows = 2 * MeanWindow::reach + 2;

    std::uint8_t* darkestOfRow(std::size_t y) { return darkest_.data() + y % keptRows * width_; }

    std::size_t width_;
    std::vector<std::uint8_t> darkest_;
    MeanWindow window_;
};

Haze hazeOf(const RawWalk& walk, std::size_t width, std::size_t height) {
    Haze haze{platform::makeLargeArray<std::uint8_t>(walk.count)};
    const std::size_t count = platform::bandCount(height, pixelsPerThread / width + 1);
    std::vector<HazeBand> bands(count, HazeBand(width));
    platform::parallelBands(height, count,
                            [&](std::size_t band, std::size_t begin, std::size_t end) {
                                bands[band].judge(walk, height, begin, end, haze.means.get());
                            });
    for (const HazeBand& band : bands) {
        haze.sum += band.sum;
        haze.deepest = std::max(haze.deepest, band.deepest);
        haze.brightest = std::max(haze.brightest, band.brightest);
    }
    return haze;
}

float veilFactor(std::uint8_t mean, float amount) {
    const float factor = static_cast<float>(mean) * (amount / 100.0f * 1.6f) / 255.0f;
    return factor > 0.0f ? std::min(factor, 0.9f) : 0.0f;  // 0 also if black meets infinity
}

void removeHaze(const Picture& picture, float amount) {
    const RawWalk walk = rawWalkOf(picture);
    if (walk.channels == 0) return;
    const Haze haze = hazeOf(walk, picture.width, picture.height);
    if (haze.brightest == 0) return;  // all is black
    if (platform::isCancelled()) return;
    const auto mean = static_cast<std::uint8_t>(haze.sum / walk.count);
    const Veil veil{veilFactor(mean, amount),
                    static_cast<float>(haze.deepest + haze.brightest) * 0.5f};
    forEachShare(walk, [&](std::size_t begin, std::size_t end) {
        unveil(walk.first + begin * walk.step, end - begin, walk.step, haze.means.get() + begin,
               veil);
    });
}

void layVeil(const Picture& picture, float amount) {
    const float t = amount / 100.0f;
    ByteTable table;
    for (unsigned in = 0; in < table.size(); ++in) {
        table[in] = clampToByte((static_cast<float>(in) - t * 255.0f) / (1.0f - t));
    }
    mapRawWalk(picture, table);
}

// The bytes of a map; 0 for sizes that are none.
std::size_t mapSize(int width, int height) {
    if (width < 1 || height < 1) return 0;
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

bool overlap(const std::uint8_t* a, const std::uint8_t* b, std::size_t size) {
    const std::less<const std::uint8_t*> before;
    return before(a, b + size) && before(b, a + size);
}

}  // namespace

}  // namespace keladjust

CxImage* dehaze(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        if (amount == 0.0f) return;
        if (amount > 0.0f) {
            keladjust::removeHaze(picture, amount);
        } else {
            keladjust::layVeil(picture, amount);
        }
    });
}

void meanFilter15(const unsigned char* source, unsigned char* destination, int width, int height) {
    if (source == nullptr || destination == nullptr) return;
    // Where maps overlap, means would be made of means, of which depends on the number of threads.
    if (keladjust::overlap(source, destination, keladjust::mapSize(width, height))) return;
    if (keladjust::mapSize(width, height) == 0) return;
    keladjust::guarded([&] {
        keladjust::mean15(source, destination, static_cast<std::size_t>(width),
                          static_cast<std::size_t>(height));
    });
}

unsigned char* estimateVeil(const unsigned char* minimum, const unsigned char* mean, int width,
                            int height, float factor) {
    if (minimum == nullptr || mean == nullptr) return nullptr;
    const keladjust::platform::DefaultFloatingPoint scope;
    const std::size_t size = keladjust::mapSize(width, height);
    // An empty map is a map, too.
    auto* const veil = static_cast<unsigned char*>(std::malloc(std::max<std::size_t>(1, size)));
    if (veil == nullptr) return nullptr;
    const keladjust::ByteTable haze = keladjust::hazeTable(factor);
    for (std::size_t i = 0; i < size; ++i) veil[i] = std::min(minimum[i], haze[mean[i]]);
    return veil;
}

unsigned char mapMaximum(const unsigned char* map, int width, int height) {
    if (map == nullptr) return 0;
    return keladjust::largestByte(map, keladjust::mapSize(width, height));
}
