// The least that a change in place costs: every byte read and written once, on every core.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

#include "support/Rows.h"

namespace {

void invert(std::uint8_t* begin, const std::uint8_t* end) {
    for (; begin != end; ++begin) *begin = static_cast<std::uint8_t>(~*begin);
}

void memoryPass(CxImage& image) {
    const std::size_t size = std::size_t{image.GetEffWidth()} * image.GetHeight();
    const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
    std::uint8_t* const bits = image.GetBits();
    std::vector<std::jthread> workers;
    for (std::size_t i = 1; i < cores; ++i) {
        workers.emplace_back(invert, bits + size * i / cores, bits + size * (i + 1) / cores);
    }
    invert(bits, bits + size / cores);
}

using keladjust::bench::addRows;
using keladjust::bench::plainly;

const bool added = addRows("memory pass", {{"exposure", plainly(memoryPass)},
                                           {"brightness", plainly(memoryPass)},
                                           {"contrast", plainly(memoryPass)}});

}  // namespace
