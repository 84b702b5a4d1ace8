#include "walks/ColourMemory.h"

#include <cstring>

namespace keladjust {

namespace {

constexpr std::uint32_t colourBits = 0xFFFFFF;

std::uint32_t loadPixel(const std::uint8_t* pixels, std::size_t i) {
    std::uint32_t pixel;
    std::memcpy(&pixel, pixels + 4 * i, sizeof pixel);
    return pixel;
}

void storePixel(std::uint32_t pixel, std::uint8_t* pixels, std::size_t i) {
    std::memcpy(pixels + 4 * i, &pixel, sizeof pixel);
}

/// The pixel with another colour, whose other bits are 0.
std::uint32_t withColour(std::uint32_t pixel, std::uint32_t colour) {
    return (pixel & ~colourBits) | colour;
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
    if (learning_.count > 0) learn(span);
}

// Without branches, which nothing could predict: for the time being an unknown colour becomes
// whatever its entry holds.
void ColourMemory::recall(PackedSpan& span) {
    const Entry* const entries = entries_.data();
    std::uint8_t* const pixels = span.pixels;
    const std::size_t count = span.count;
    std::size_t unknown = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = loadPixel(pixels, i);
        const std::uint32_t colour = pixel & colourBits;
        const Entry entry = entries[slotOf(colour)];
        storePixel(withColour(pixel, entry.changed), pixels, i);
        colours_[unknown] = colour;
        places_[unknown] = static_cast<std::uint16_t>(i);
        unknown += entry.colour != colour ? 1 : 0;
    }
    learning_.count = unknown;
}

void ColourMemory::learn(PackedSpan& span) {
    for (std::size_t i = 0; i < learning_.count; ++i) storePixel(colours_[i], learning_.pixels, i);
    runInTurn(layout_, kernels_, learning_);
    for (std::size_t i = 0; i < learning_.count; ++i) {
        const std::uint32_t changed = loadPixel(learning_.pixels, i);
        const std::size_t place = places_[i];
        storePixel(withColour(loadPixel(span.pixels, place), changed), span.pixels, place);
        entries_[slotOf(colours_[i])] = {colours_[i], changed};
    }
}

}  // namespace keladjust
