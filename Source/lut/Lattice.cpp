#include "lut/Lattice.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "lut/TableStages.h"
#include "platform/FloatingPoint.h"
#include "walks/ColourKernel.h"

namespace keladjust {

void bakeLattice(const _AdjustParam& record, unsigned edge, bool redFastest, float* points) {
    const platform::DefaultFloatingPoint scope;
    const TableStages tableStages(record);
    const std::size_t count = std::size_t{edge} * edge * edge;
    std::array<float, 256> levels{};
    for (unsigned i = 0; i < edge; ++i) {
        levels[i] = static_cast<float>(i) / static_cast<float>(edge - 1);
    }
    const auto fill = [&](std::size_t number, ColourRun& run) {
        const std::size_t first = number * ColourRun::capacity;
        run.count = std::min(ColourRun::capacity, count - first);
        float* const fastest = redFastest ? run.red : run.blue;
        float* const slowest = redFastest ? run.blue : run.red;
        std::size_t fast = first % edge;
        std::size_t green = first / edge % edge;
        std::size_t slow = first / edge / edge;
        for (std::size_t i = 0; i < run.count; ++i) {
            fastest[i] = levels[fast];
            run.green[i] = levels[green];
            slowest[i] = levels[slow];
            if (++fast < edge) continue;
            fast = 0;
            if (++green < edge) continue;
            green = 0;
            ++slow;
        }
    };
    const auto store = [&](std::size_t number, const ColourRun& run) {
        float* point = points + 3 * number * ColourRun::capacity;
        for (std::size_t i = 0; i < run.count; ++i) {
            *point++ = run.red[i];
            *point++ = run.green[i];
            *point++ = run.blue[i];
        }
    };
    bakeRuns(tableStages, (count + ColourRun::capacity - 1) / ColourRun::capacity, fill, store);
}

}  // namespace keladjust
