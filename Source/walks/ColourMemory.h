#ifndef KELADJUST_WALKS_COLOURMEMORY_H
#define KELADJUST_WALKS_COLOURMEMORY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ImageFormat/PackedSpan.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Runs kernels on a span whose layout is `layout`, one after another.
void runInTurn(PixelLayout layout, std::span<const PixelKernel* const> kernels, PackedSpan& span);

/// Remembers what a long row of kernels has made of a colour. Neighbours in a picture share their
/// colours, so most pixels need no more than a look into a table that fits the second-level cache;
/// the others go through the kernels together. One for each thread.
class ColourMemory {
public:
    /// The kernels must not look at a pixel's place.
    ColourMemory(PixelLayout layout, std::span<const PixelKernel* const> kernels);

    /// True if the kernels together take longer than the memory.
    static bool pays(std::span<const PixelKernel* const> kernels);

    /// What runInTurn() does.
    void run(PackedSpan& span);

private:
    struct Entry {
        std::uint32_t colour = 0xFFFFFFFF;  ///< none: colours have 24 bits
        std::uint32_t changed = 0;
    };
    static constexpr unsigned slotBits = 15;

    static std::size_t slotOf(std::uint32_t colour) {
        return colour * 0x9E3779B1u >> (32 - slotBits);
    }
    void recall(PackedSpan& span);
    void learn(PackedSpan& span);

    PixelLayout layout_;
    std::span<const PixelKernel* const> kernels_;
    std::vector<Entry> entries_;
    unsigned spansToPass_ = 0;  ///< for which not to ask
    // The colours to learn and their places in the span.
    std::array<std::uint32_t, PackedSpan::capacity> colours_;
    std::array<std::uint16_t, PackedSpan::capacity> places_;
    PackedPixels learningPixels_;
    PackedSpan learning_;
};

}  // namespace keladjust

#endif
