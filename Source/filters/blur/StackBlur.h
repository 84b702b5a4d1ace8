#ifndef KELADJUST_FILTERS_BLUR_STACKBLUR_H
#define KELADJUST_FILTERS_BLUR_STACKBLUR_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "filters/blur/StackBlurScale.h"
#include "walks/HaloBands.h"

namespace keladjust {

/// The rows of a buffer as the blur takes them, padded to a multiple of four bytes; none where it
/// blurs nothing: pixels of other than 1, 3 or 4 bytes, or a radius outside 1..254.
std::optional<ByteRows> stackBlurRows(std::uint8_t* bits, std::size_t width, std::size_t height,
                                      std::size_t pixelBytes, int radius);

/// Stack Blur in place: rows are blurred along their length as the blur across them gets near, and
/// kept only as long as it needs them. The constructor allocates all that it needs, so that a
/// caller can have it before the first pixel changes.
class StackBlur {
public:
    /// @param alongRows false: only the pass across rows
    StackBlur(const ByteRows& rows, std::size_t pixelBytes, std::size_t radius,
              bool alongRows = true);

    void run() { run(0, 0.0f); }

    /// Of the buffer's first bytes, `pushed` in number, blurs none, but pushes them away from their
    /// blur by a finite `factor` of the distance.
    void run(std::size_t pushed, float factor);

private:
    /// Storage of one thread.
    struct Workspace {
        std::vector<std::uint8_t> ring;   ///< rows that are blurred along their length
        std::vector<std::uint8_t> state;  ///< of the blur across rows
        std::vector<std::uint8_t> tile;
    };
    class BandRun;

    ByteRows rows_;
    std::size_t pixelBytes_;
    std::size_t radius_;
    bool alongRows_;
    HaloBands bands_;
    std::size_t ringRows_;
    std::size_t ringStride_;
    std::vector<std::uint8_t> noRow_;  // what lies above all rows that count
    std::vector<Workspace> spaces_;
};

/// Only the pass along rows, in place.
void stackBlurAlongRows(const ByteRows& rows, std::size_t pixelBytes, std::size_t radius);

}  // namespace keladjust

#endif
