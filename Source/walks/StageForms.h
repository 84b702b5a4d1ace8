#ifndef KELADJUST_WALKS_STAGEFORMS_H
#define KELADJUST_WALKS_STAGEFORMS_H

#include <keladjust/CxImage.h>

#include <cerrno>
#include <cstddef>
#include <span>

#include "platform/FloatingPoint.h"
#include "walks/ColourKernel.h"
#include "walks/Picture.h"
#include "walks/PixelKernel.h"

/// The shells in which every stage is exported: a kernel over a picture or over a colour table.
namespace keladjust {

/// Runs the kernels one after another on every pixel, in one pass over the picture: what comes out
/// is what they would leave one by one. Rows are spread over threads.
void runKernels(const Picture& picture, std::span<const PixelKernel* const> kernels);

/// Maps every channel byte of the picture along the raw walk.
void mapRawWalk(const Picture& picture, const ByteTable& table);

/// Calls `body()` as an exported function does: in the default floating-point environment, and with
/// no exception passing on. A body allocates before it changes a byte, so what memory is too short
/// for stays as it was; errno says so, also where it was a helping thread that had none.
template <class Body>
void guarded(Body body) noexcept {
    const platform::DefaultFloatingPoint scope;
    try {
        body();
    } catch (...) {
        errno = ENOMEM;
    }
}

/// The shell of every picture form: calls `body(picture)` if the image has pixels.
template <class Body>
CxImage* exportedForm(CxImage* image, Body body) noexcept {
    guarded([&] {
        if (const auto picture = pictureOf(image)) body(*picture);
    });
    return image;
}

/// The image form of a per-pixel stage; `Kernel` is made from the settings.
template <class Kernel, class... Settings>
CxImage* applyKernel(CxImage* image, Settings... settings) noexcept {
    return exportedForm(image, [&](const Picture& picture) {
        const Kernel kernel(settings...);
        if (!kernel.active()) return;
        const PixelKernel* const kernels[] = {&kernel};
        runKernels(picture, kernels);
    });
}

/// Runs the kernel on entries of a colour table, `stride` floats apart. Entries closer than three
/// floats overlap: each one sees what became of the one before.
void runColourKernel(float* lut, std::size_t count, std::ptrdiff_t stride,
                     const ColourKernel& kernel);

/// The look-up-table form of a stage; `Kernel` is made from the settings.
template <class Kernel, class... Settings>
float* applyColourKernel(float* lut, unsigned long count, int stride,
                         Settings... settings) noexcept {
    guarded([&] {
        const Kernel kernel(settings...);
        if (lut != nullptr && kernel.active()) runColourKernel(lut, count, stride, kernel);
    });
    return lut;
}

}  // namespace keladjust

#endif
