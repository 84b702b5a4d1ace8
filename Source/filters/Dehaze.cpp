// Dehaze: a veil estimated from the darkest channel about each pixel and taken off, or, for
// negative settings, an even white one laid over.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "ImageFormat/RawWalk.h"
#include "filters/Rounding.h"
#include "filters/StageForms.h"
#include "platform/Parallel.h"

namespace keladjust {

namespace {

constexpr std::size_t pixelsPerThread = 1 << 15;

// Half of the mean filter's window, without its middle.
constexpr std::size_t reach = 7;

using ByteMap = std::unique_ptr<std::uint8_t[]>;

// Sum / count for a count of at most 225 bytes: the product is within count / 2^24 of the quotient,
// too little to reach the next whole number, and stays below 2^32.
class CountDivider {
public:
    explicit CountDivider(std::uint32_t count) : reciprocal_(((1u << 24) + count - 1) / count) {}
    std::uint8_t operator()(std::uint32_t sum) const {
        return static_cast<std::uint8_t>((sum * reciprocal_) >> 24);
    }

private:
    std::uint32_t reciprocal_;
};

void addRow(const std::uint8_t* __restrict row, std::size_t width,
            std::uint16_t* __restrict columnSums) {
    for (std::size_t x = 0; x < width; ++x) {
        columnSums[x] = static_cast<std::uint16_t>(columnSums[x] + row[x]);
    }
}

void subtractRow(const std::uint8_t* __restrict row, std::size_t width,
                 std::uint16_t* __restrict columnSums) {
    for (std::size_t x = 0; x < width; ++x) {
        columnSums[x] = static_cast<std::uint16_t>(columnSums[x] - row[x]);
    }
}

// Means of one row from the sums of its window's columns, `rows` high each.
void meanOfRow(const std::uint16_t* columnSums, std::size_t width, std::uint32_t rows,
               std::uint8_t* means) {
    std::uint32_t sum = 0;
    std::uint32_t columns = 0;
    for (; columns < std::min(reach, width); ++columns) sum += columnSums[columns];

    // The window gains a column on the right, loses one on the left, or both.
    const auto slide = [&](std::size_t x) {
        if (x + reach < width) {
            sum += columnSums[x + reach];
            ++columns;
        }
        if (x > reach) {
            sum -= columnSums[x - reach - 1];
            --columns;
        }
    };
    const CountDivider whole(rows * (2 * reach + 1));
    const std::size_t wholeEnd = width > reach ? width - reach : 0;
    std::size_t x = 0;
    for (; x < std::min(reach + 1, width); ++x) {
        slide(x);
        means[x] = static_cast<std::uint8_t>(sum / (columns * rows));
    }
    for (; x < wholeEnd; ++x) {
        sum += columnSums[x + reach];
        sum -= columnSums[x - reach - 1];
        means[x] = whole(sum);
    }
    for (; x < width; ++x) {
        slide(x);
        means[x] = static_cast<std::uint8_t>(sum / (columns * rows));
    }
}

// Sums of the columns of a window that moves down the map row by row.
void meanOfRows(const std::uint8_t* source, std::uint8_t* destination, std::size_t width,
                std::size_t height, std::size_t begin, std::size_t end,
                std::vector<std::uint16_t>& columnSums) {
    std::fill(columnSums.begin(), columnSums.end(), std::uint16_t{0});
    std::size_t top = begin > reach ? begin - reach : 0;
    std::size_t bottom = top;  // one past the window's last row
    for (std::size_t y = begin; y < end; ++y) {
        for (; bottom < std::min(y + reach + 1, height); ++bottom) {
            addRow(source + bottom * width, width, columnSums.data());
        }
        for (; top + reach < y; ++top) {
            subtractRow(source + top * width, width, columnSums.data());
        }
        meanOfRow(columnSums.data(), width, static_cast<std::uint32_t>(bottom - top),
                  destination + y * width);
    }
}

void mean15(const std::uint8_t* source, std::uint8_t* destination, std::size_t width,
            std::size_t height) {
    const std::size_t bands = platform::bandCount(height, pixelsPerThread / width + 1);
    std::vector<std::vector<std::uint16_t>> columnSums(bands, std::vector<std::uint16_t>(width));
    platform::parallelBands(
        height, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
            meanOfRows(source, destination, width, height, begin, end, columnSums[band]);
        });
}

// The part of a mean that may be haze; the darkest channel bounds it. Factors below 0 leave none.
std::uint8_t hazeOf(std::uint8_t mean, float factor) {
    return clampToByte(static_cast<float>(mean) * factor);
}

ByteTable hazeTable(float factor) {
    ByteTable table;
    for (unsigned mean = 0; mean < table.size(); ++mean) {
        table[mean] = hazeOf(static_cast<std::uint8_t>(mean), factor);
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

// The darkest channel of every pixel, and what the haze is judged by.
struct Darkness {
    ByteMap map;
    std::uint8_t mean = 0;              ///< of the map
    std::uint8_t brightestChannel = 0;  ///< of the whole picture
};

Darkness darknessOf(const RawWalk& walk) {
    struct Share {
        std::uint64_t sum = 0;
        std::uint8_t brightest = 0;
    };
    Darkness darkness{std::make_unique_for_overwrite<std::uint8_t[]>(walk.count)};
    const std::size_t bands = platform::bandCount(walk.count, pixelsPerThread);
    std::vector<Share> shares(bands);
    platform::parallelBands(walk.count, bands,
                            [&](std::size_t band, std::size_t begin, std::size_t end) {
                                withStep(walk.step, [&](auto step) {
                                    const std::size_t channels = std::min<std::size_t>(3, step);
                                    Share share;
                                    for (std::size_t i = begin; i < end; ++i) {
                                        const std::uint8_t* const pixel = walk.first + i * step;
                                        std::uint8_t darkest = pixel[0];
                                        std::uint8_t brightest = pixel[0];
                                        for (std::size_t c = 1; c < channels; ++c) {
                                            darkest = std::min(darkest, pixel[c]);
                                            brightest = std::max(brightest, pixel[c]);
                                        }
                                        darkness.map[i] = darkest;
                                        share.sum += darkest;
                                        share.brightest = std::max(share.brightest, brightest);
                                    }
                                    shares[band] = share;
                                });
                            });
    std::uint64_t sum = 0;
    for (const Share& share : shares) {
        sum += share.sum;
        darkness.brightestChannel = std::max(darkness.brightestChannel, share.brightest);
    }
    darkness.mean = static_cast<std::uint8_t>(sum / walk.count);
    return darkness;
}

// What removing a veil makes of every channel byte: one table for each depth of the veil.
std::vector<ByteTable> unveilTables(std::uint8_t deepest, float light) {
    std::vector<ByteTable> tables(std::size_t{deepest} + 1);
    for (int veil = 0; veil <= deepest; ++veil) {
        const float kept = 1.0f - static_cast<float>(veil) / light;
        for (int in = 0; in < 256; ++in) {
            tables[static_cast<std::size_t>(veil)][static_cast<std::size_t>(in)] =
                clampToByte(static_cast<float>(in - veil) / kept);
        }
    }
    return tables;
}

float veilFactor(std::uint8_t mean, float amount) {
    const float factor = static_cast<float>(mean) * (amount / 100.0f * 1.6f) / 255.0f;
    return factor > 0.9f ? 0.9f : factor;
}

void removeHaze(CxImage& image, float amount) {
    const RawWalk walk = rawWalkOf(image);
    if (walk.channels == 0) return;
    const Darkness darkness = darknessOf(walk);
    const auto mean = std::make_unique_for_overwrite<std::uint8_t[]>(walk.count);
    mean15(darkness.map.get(), mean.get(), image.width, image.height);

    const std::uint8_t deepestMean = largestByte(mean.get(), walk.count);
    const float light = static_cast<float>(deepestMean + darkness.brightestChannel) * 0.5f;
    const ByteTable haze = hazeTable(veilFactor(darkness.mean, amount));
    const std::vector<ByteTable> unveil = unveilTables(haze[deepestMean], light);
    platform::parallelBands(walk.count, platform::bandCount(walk.count, pixelsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                withStep(walk.step, [&](auto step) {
                                    const std::size_t channels = std::min<std::size_t>(3, step);
                                    for (std::size_t i = begin; i < end; ++i) {
                                        std::uint8_t* const pixel = walk.first + i * step;
                                        const ByteTable& table =
                                            unveil[std::min(darkness.map[i], haze[mean[i]])];
                                        for (std::size_t c = 0; c < channels; ++c)
                                            pixel[c] = table[pixel[c]];
                                    }
                                });
                            });
}

void layVeil(CxImage& image, float amount) {
    const float t = amount / 100.0f;
    ByteTable table;
    for (unsigned in = 0; in < table.size(); ++in) {
        table[in] = clampToByte((static_cast<float>(in) - t * 255.0f) / (1.0f - t));
    }
    mapRawWalk(image, table);
}

// The bytes of a map; 0 for sizes that are none.
std::size_t mapSize(int width, int height) {
    if (width < 1 || height < 1) return 0;
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

}  // namespace

}  // namespace keladjust

CxImage* dehaze(CxImage* image, float amount) {
    return keladjust::exportedForm(image, [&] {
        if (image == nullptr || amount == 0.0f) return;
        if (amount > 0.0f) {
            keladjust::removeHaze(*image, amount);
        } else {
            keladjust::layVeil(*image, amount);
        }
    });
}

void meanFilter15(const unsigned char* source, unsigned char* destination, int width, int height) {
    if (source == nullptr || destination == nullptr || keladjust::mapSize(width, height) == 0) {
        return;
    }
    try {
        keladjust::mean15(source, destination, static_cast<std::size_t>(width),
                          static_cast<std::size_t>(height));
    } catch (...) {
        // Short of memory: the destination stays as it was.
    }
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
