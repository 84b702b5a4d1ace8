#ifndef KELADJUST_WALKS_PIXELKERNEL_H
#define KELADJUST_WALKS_PIXELKERNEL_H

#include <array>
#include <cstdint>

#include "ImageFormat/PackedSpan.h"

namespace keladjust {

using ByteTable = std::array<std::uint8_t, 256>;

/// A per-pixel stage at one setting: constants computed once, then applied to span after span, from
/// several threads at a time.
class PixelKernel {
public:
    virtual ~PixelKernel() = default;

    /// False at the identity setting: the stage is then not run at all.
    virtual bool active() const = 0;

    /// Changes the pixels of a span in place.
    virtual void run(PackedSpan& span) const = 0;

    /// True if what becomes of a pixel depends on where it is.
    virtual bool looksAtPlace() const { return false; }

    /// Roughly how many nanoseconds a pixel takes.
    virtual unsigned effort() const { return 1; }

    /// The table of a stage that maps each channel byte by itself, else null. Neighbouring tables
    /// compose into one.
    virtual const ByteTable* table() const { return nullptr; }
};

/// A stage that maps each channel byte by itself, all three alike.
class TableKernel : public PixelKernel {
public:
    void run(PackedSpan& span) const final;
    const ByteTable* table() const final { return &table_; }
    unsigned effort() const final { return 0; }

protected:
    /// Fills the table with `map(value)` for every byte value.
    template <class Map>
    void fill(Map map) {
        for (unsigned value = 0; value < table_.size(); ++value) {
            table_[value] = map(static_cast<std::uint8_t>(value));
        }
    }

private:
    ByteTable table_{};
};

/// Several tables one after another.
class ComposedTable final : public TableKernel {
public:
    ComposedTable(const ByteTable& first, const ByteTable& second) {
        fill([&](std::uint8_t value) { return second[first[value]]; });
    }
    bool active() const override { return true; }
};

}  // namespace keladjust

#endif
