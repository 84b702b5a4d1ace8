#ifndef KELADJUST_TESTS_TWOPATHS_H
#define KELADJUST_TESTS_TWOPATHS_H

#include "pictures/Adjuster.h"
#include "settings/Record.h"

namespace keladjust::test {

/// Settings by which the two paths part: the GPU's floats stay floats between the stages.
inline _AdjustParam someSettings() {
    _AdjustParam record = app::usualRecord();
    record.temperature = 8000;
    record.shadows = 40;
    record.range[KELADJUST_RANGE_RED].saturation = 30;
    return record;
}

/// What someSettings() make of a picture.
inline app::Photo adjusted(app::Photo photo, app::GpuUse use) {
    app::Adjuster(use).adjust(photo, someSettings());
    return photo;
}

}  // namespace keladjust::test

#endif
