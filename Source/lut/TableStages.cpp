#include "lut/TableStages.h"

#include <utility>

namespace keladjust {

TableStages::TableStages(const _AdjustParam& record) {
    for (const Stage& stage : stages) {
        if (stage.forms.colours == nullptr) continue;
        std::unique_ptr<ColourKernel> kernel = stage.forms.colours(stage.slots(record));
        if (kernel->active()) kernels_[count_++] = std::move(kernel);
    }
}

}  // namespace keladjust
