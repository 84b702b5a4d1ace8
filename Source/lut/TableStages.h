#ifndef KELADJUST_LUT_TABLESTAGES_H
#define KELADJUST_LUT_TABLESTAGES_H

#include <keladjust/keladjust.h>

#include <array>
#include <cstddef>
#include <memory>

#include "filters/Stages.h"
#include "platform/Parallel.h"
#include "walks/ColourKernel.h"

namespace keladjust {

/// The stages that a colour table can hold, at the settings of a record.
class TableStages {
public:
    explicit TableStages(const _AdjustParam& record);

    /// Takes the colours of a run through all of them.
    void change(ColourRun& run) const {
        for (std::size_t i = 0; i < count_; ++i) kernels_[i]->change(run);
    }

private:
    std::array<std::unique_ptr<ColourKernel>, stages.size()> kernels_;
    std::size_t count_ = 0;
};

/// Bakes colours in `runs` runs, spread over threads: `fill(index, run)` puts in what a run is
/// before the stages, `store(index, run)` takes away what it is after them.
template <class Fill, class Store>
void bakeRuns(const TableStages& tableStages, std::size_t runs, Fill fill, Store store) {
    constexpr std::size_t runsPerThread = 16;
    platform::parallelBands(runs, platform::bandCount(runs, runsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                ColourRun run;
                                for (std::size_t i = begin; i < end; ++i) {
                                    fill(i, run);
                                    tableStages.change(run);
                                    store(i, run);
                                }
                            });
}

}  // namespace keladjust

#endif
