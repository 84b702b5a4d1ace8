#include "walks/ColourMemory.h"

#include <cstring>

namespace keladjust {

namespace {

constexpr std::uint32_t colourBits = 0xFFFFFF;

std::uint32_t loadPixel(const PackedSpan& span, std::size_t i) {
    std::uint32_t pixel;
    std::memcpy(&pixel, span.pixels + 4 * i, sizeof pixel);
    return pixel;
}

void storePixel(std::uint32_t pixel, PackedSpan& span, std::size_t i) {
    std::memcpy(span.pixels + 4 * i, &pixel, sizeof pixel);
}

}  // namespace

void runInTurn(PixelLayout layout, std::span<const PixelKernel* const> kernels, PackedSpan& span) {
    for (const PixelKernel* kernel : kernels) {
        if (kernel != kernels.front()) roundTrip(layout, span);
        kernel->run(span);
    }
}

ColourMemory::ColourMemory(PixelLayout layout, std::span<const PixelKernel* const> kernels)
    : layout_(layout), kernels_(kernels), entries_(std::size_t{1} << slotBits) {
    learning_.pixels = learningPixels_.bytes;
}

bool ColourMemory::pays(std::span<const PixelKernel* const> kernels) {
    constexpr unsigned least = 8;
    unsigned effort = 0;
    for (const PixelKernel* kernel : kernels) effort += kernel->effort();
    return effort >= least;
}

void ColourMemory::run(PackedSpan& span) {
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
        storePixel((loadPixel(span, i) & ~colourBits) | changed_[i], span, i);
    }
}

// Without branches, which nothing could predict.
void ColourMemory::recall(const PackedSpan& span) {
    std::size_t unknown = 0;
    for (std::size_t i = 0; i < span.count; ++i) {
        const std::uint32_t colour = loadPixel(span, i) & colourBits;
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
        storePixel(colours_[unknown_[i]], learning_, i);
    }
    runInTurn(layout_, kernels_, learning_);
    for (std::size_t i = 0; i < learning_.count; ++i) {
        const std::uint32_t colour = colours_[unknown_[i]];
        const std::uint32_t changed = loadPixel(learning_, i);
        changed_[unknown_[i]] = changed;
        entries_[slotOf(colour)] = {colour, changed};
    }
}

}  // namespace keladjust
