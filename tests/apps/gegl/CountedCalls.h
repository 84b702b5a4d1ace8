#ifndef KELADJUST_TESTS_COUNTEDCALLS_H
#define KELADJUST_TESTS_COUNTEDCALLS_H

#include <keladjust/keladjust.h>

#include <vector>

namespace keladjust::test {

/// A call of keladjustRun() by anybody in this process.
struct Call {
    unsigned width;
    unsigned height;
    int path;  // a KeladjustPath
    _AdjustParam record;
};

/// Those since the last time somebody asked.
std::vector<Call> takeCalls();

}  // namespace keladjust::test

#endif
