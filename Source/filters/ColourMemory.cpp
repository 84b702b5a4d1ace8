#include "filters/ColourMemory.h"

namespace keladjust {

namespace {

std::uint32_t pack(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return std::uint32_t{red} | std::uint32_t{green} << 8 | std::uint32_t{blue} << 16;
}

}  // namespace

void runInTurn(PixelLayout layout, std::span<const PixelKernel* const> kernels, PixelSpan& span) {
    for (const PixelKernel* kernel : kernels) {
        if (kernel != kernels.front()) roundTrip(layout, span);
        kernel->run(span);
    }
}

ColourMemory::ColourMemory(PixelLayout layout, std::span<const PixelKernel* const> kernels)
    : layout_(layout), kernels_(kernels), entries_(std::size_t{1} << slotBits) {}

bool ColourMemory::pays(std::span<const PixelKernel* const> kernels) {
    constexpr unsigned least = 8;
    unsigned effort = 0;
    for (const PixelKernel* kernel : kernels) effort += kernel->effort();
    return effort >= least;
}

void ColourMemory::run(PixelSpan& span) {
    if (spansToPass_ > 0) {
        --spansToPass_;
        runInTurn(layout_, kernels_, span);
        return;
    }
    recall(span);
    // Where most colours are new, as in noise, it is not worth asking for each span.
    constexpr unsigned pause = 3;
    if (2 * learning_.count > span.count) spansToPass_ = pause;
    if (learning_.count > 0) learn();
    for (std::size_t i = 0; i < span.count; ++i) {
        span.red[i] = static_cast<std::uint8_t>(changed_[i]);
        span.green[i] = static_cast<std::uint8_t>(changed_[i] >> 8);
        span.blue[i] = static_cast<std::uint8_t>(changed_[i] >> 16);
    }
}

// Without branches, which nothing could predict.
void ColourMemory::recall(const PixelSpan& span) {
    std::size_t unknown = 0;
    for (std::size_t i = 0; i < span.count; ++i) {
        const std::uint32_t colour = pack(span.red[i], span.green[i], span.blue[i]);
        const Entry entry = entries_[slotOf(colour)];
        colours_[i] = colour;
        changed_[i] = entry.changed;
        unknown_[unknown] = static_cast<std::uint16_t>(i);
        unknown += entry.colour != colour ? 1 : 0;
    }
    learning_.count = unknown;
}

void ColourMemory::learn() {
    for (std::size_t i = 0; i < learning_.count; ++i) {
        const std::uint32_t colour = colours_[unknown_[i]];
        learning_.red[i] = static_cast<std::uint8_t>(colour);
        learning_.green[i] = static_cast<std::uint8_t>(colour >> 8);
        learning_.blue[i] = static_cast<std::uint8_t>(colour >> 16);
    }
    runInTurn(layout_, kernels_, learning_);
    for (std::size_t i = 0; i < learning_.count; ++i) {
        const std::uint32_t colour = colours_[unknown_[i]];
        const std::uint32_t changed = pack(learning_.red[i], learning_.green[i], learning_.blue[i]);
        changed_[unknown_[i]] = changed;
        entries_[slotOf(colour)] = {colour, changed};
    }
}

}  // namespace keladjust
