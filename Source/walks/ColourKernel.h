#ifndef KELADJUST_WALKS_COLOURKERNEL_H
#define KELADJUST_WALKS_COLOURKERNEL_H

#include <cstddef>

namespace keladjust {

/// Some entries of a colour table, each channel by itself, in the first-level cache. Kernels may
/// run on past the entries that count, to the end of a vector.
struct ColourRun {
    static constexpr std::size_t capacity = 256;

    std::size_t count = 0;
    alignas(64) float red[capacity] = {};
    alignas(64) float green[capacity] = {};
    alignas(64) float blue[capacity] = {};
};

/// The look-up-table form of a stage at one setting: constants computed once, then applied to run
/// after run, from several threads at a time.
class ColourKernel {
public:
    virtual ~ColourKernel() = default;

    /// False at the identity setting: the stage is then not run at all.
    virtual bool active() const = 0;

    /// Changes the colours of a run in place.
    virtual void change(ColourRun& run) const = 0;
};

}  // namespace keladjust

#endif
