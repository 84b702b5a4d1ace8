#ifndef KELADJUST_WALKS_COLOURMEMORY_H
#define KELADJUST_WALKS_COLOURMEMORY_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include "ImageFormat/PackedSpan.h"
#include "walks/PixelKernel.h"

namespace keladjust {

/// Runs kernels on a span whose layout is `layout`, one after another.
void runInTurn(PixelLayout layout, std::span<const PixelKernel* const> kernels, PackedSpan& span);

/// What a long row of kernels has made of colours, kept for a call and shared by its threads. Even
/// in photographs at their native grain seven of eight pixels have a colour that has been there
/// before.
///
/// A colour has one place where it may be known. Places of 16 neighbouring colours, which mostly
/// come together, make a cache line; which line is hashed. A word tells the changed colour in its
/// low 24 bits and which of the colours of its place it was in the others, so that no thread ever
/// sees half of what another one writes.
class ColourMemory {
public:
    using Word = std::atomic<std::uint32_t>;

    /// @throws std::bad_alloc
    explicit ColourMemory(std::size_t pixels);

    /// True if the kernels together take longer than the memory.
    static bool pays(std::span<const PixelKernel* const> kernels);

    /// Binary logarithm of the number of places.
    unsigned placeBits() const { return placeBits_; }
    Word* words() { return words_.get(); }

private:
    struct Free {
        void operator()(Word* words) const { std::free(words); }
    };

    unsigned placeBits_;
    std::unique_ptr<Word[], Free> words_;
};

/// The kernels by way of a memory: pixels whose colours are known need no more than a look there,
/// the others go through the kernels together. One for each thread.
class RememberingKernels {
public:
    /// The kernels must not look at a pixel's place.
    /// @param last what follows them, with a memory of its own; may be null
    RememberingKernels(PixelLayout layout, std::span<const PixelKernel* const> kernels,
                       ColourMemory& memory, RememberingKernels* last = nullptr);

    /// What runInTurn() does with the kernels and the last ones.
    void run(PackedSpan& span);

private:
    void runThrough(PackedSpan& span);
    void learn(PackedSpan& span);

    PixelLayout layout_;
    std::span<const PixelKernel* const> kernels_;
    ColourMemory& memory_;
    RememberingKernels* last_;
    unsigned pause_ = 0;        ///< spans to pass after one of new colours
    unsigned spansToPass_ = 0;  ///< for which not to ask
    std::size_t unknown_ = 0;   ///< pixels of the span whose colours are to be learned
    // Vectors are stored whole.
    std::array<std::uint32_t, PackedSpan::capacity + PackedSpan::block> colours_;
    std::array<std::uint32_t, PackedSpan::capacity + PackedSpan::block> places_;
    PackedPixels learning_;
};

}  // namespace keladjust

#endif
