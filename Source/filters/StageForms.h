#ifndef KELADJUST_FILTERS_STAGEFORMS_H
#define KELADJUST_FILTERS_STAGEFORMS_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstddef>
#include <span>

#include "filters/PixelKernel.h"
#include "platform/FloatingPoint.h"

/// The shells in which every stage is exported: a kernel over a picture or over a colour table.
namespace keladjust {

/// Runs the kernels one after another on every pixel, in one pass over the picture: what comes out
/// is what they would leave one by one. Rows are spread over threads.
void runKernels(CxImage& image, std::span<const PixelKernel* const> kernels);

/// Maps every channel byte of the picture along the raw walk.
void mapRawWalk(CxImage& image, const ByteTable& table);

/// Calls `body()` as an exported function does: in the default floating-point environment, and with
/// no exception passing on. A body allocates before it changes a pixel, so a picture for which
/// memory is short is still whole.
template <class Body>
CxImage* exportedForm(CxImage* image, Body body) noexcept {
    const platform::DefaultFloatingPoint scope;
    try {
        body();
    } catch (...) {
        // Nothing to report to: the picture comes back as it was.
    }
    return image;
}

/// The image form of a per-pixel stage; `Kernel` is made from the settings.
template <class Kernel, class... Settings>
CxImage* applyKernel(CxImage* image, Settings... settings) noexcept {
    return exportedForm(image, [&] {
        const Kernel kernel(settings...);
        if (image == nullptr || !kernel.active()) return;
        const PixelKernel* const kernels[] = {&kernel};
        runKernels(*image, kernels);
    });
}

/// One entry of a colour table, scaled 0..1.
struct Colour {
    float red;
    float green;
    float blue;
};

/// The look-up-table form of a stage; `Formula` is made from the settings, says whether it is
/// active() and maps one Colour to another.
template <class Formula, class... Settings>
float* applyFormula(float* lut, unsigned long count, int stride, Settings... settings) noexcept {
    const platform::DefaultFloatingPoint scope;
    const Formula formula(settings...);
    if (lut == nullptr || !formula.active()) return lut;
    // In order and on one thread: entries closer than three floats overlap.
    float* entry = lut;
    for (unsigned long i = 0; i < count; ++i, entry += stride) {
        const Colour changed = formula(Colour{entry[0], entry[1], entry[2]});
        entry[0] = changed.red;
        entry[1] = changed.green;
        entry[2] = changed.blue;
    }
    return lut;
}

/// `map` for each of the three channels.
template <class Map>
Colour mapChannels(Colour c, Map map) {
    return {map(c.red), map(c.green), map(c.blue)};
}

inline float largestOf(Colour c) {
    return std::max({c.red, c.green, c.blue});
}
inline float smallestOf(Colour c) {
    return std::min({c.red, c.green, c.blue});
}

}  // namespace keladjust

#endif
