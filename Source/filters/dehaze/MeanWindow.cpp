#include "filters/dehaze/MeanWindow.h"

#include <algorithm>
#include <numeric>

#include "filters/dehaze/MeanRows.h"

namespace keladjust {

static_assert(meanSide == 2 * MeanWindow::reach + 1);

MeanWindow::MeanWindow(std::size_t width)
    : width_(width), columns_(width + columnSlack), triples_(width + columnSlack) {}

void MeanWindow::enter(const std::uint8_t* row) {
    addToColumns(row, width_, columns_.data());
}

void MeanWindow::leave(const std::uint8_t* row) {
    takeFromColumns(row, width_, columns_.data());
}

void MeanWindow::exchange(const std::uint8_t* entering, const std::uint8_t* leaving) {
    exchangeInColumns(entering, leaving, width_, columns_.data());
}

void MeanWindow::means(std::uint8_t* out) {
    const auto rows = static_cast<std::uint32_t>(bottom_ - top_);
    // Windows that the sides crop.
    const auto cropped = [&](std::size_t begin, std::size_t end) {
        for (std::size_t x = begin; x < end; ++x) {
            const std::size_t first = x - std::min(x, reach);
            const std::size_t last = std::min(x + reach + 1, width_);
            const std::uint32_t sum =
                std::accumulate(columns_.data() + first, columns_.data() + last, 0u);
            out[x] = static_cast<std::uint8_t>(sum / (rows * (last - first)));
        }
    };
    if (width_ <= 2 * reach) {
        cropped(0, width_);
        return;
    }
    cropped(0, reach);
    meansInside(columns_.data(), width_ - 2 * reach, rows, triples_.data(), out + reach);
    cropped(width_ - reach, width_);
}

}  // namespace keladjust
