#ifndef KELADJUST_TESTS_GOLDEN_RECORDS_H
#define KELADJUST_TESTS_GOLDEN_RECORDS_H

#include <vector>

#include "support/StageSettings.h"

namespace keladjust::test {

/// Records that move many sliders at once, or all of them to absurd places.
std::vector<NamedSettings> goldenRecords();

}  // namespace keladjust::test

#endif
