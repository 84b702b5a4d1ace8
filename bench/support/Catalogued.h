#ifndef KELADJUST_BENCH_SUPPORT_CATALOGUED_H
#define KELADJUST_BENCH_SUPPORT_CATALOGUED_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <string_view>

#include "filters/Stages.h"
#include "support/StageSettings.h"

namespace keladjust::bench {

/// A stage of the catalogue, its first setting at `value` and the others at their identity.
class Catalogued {
public:
    Catalogued(std::string_view name, float value)
        : stage_(*std::find_if(stages.begin(), stages.end(),
                               [&](const Stage& each) { return each.name.c_str() == name; })),
          record_(test::identity) {
        test::setSlot(record_, stage_, 0, value);
    }

    CxImage* operator()(CxImage* image) const { return stage_.run(image, record_); }
    void operator()(CxImage& image) const { stage_.run(&image, record_); }

private:
    const Stage& stage_;
    _AdjustParam record_;
};

}  // namespace keladjust::bench

#endif
