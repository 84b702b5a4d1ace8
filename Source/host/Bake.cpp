#include <keladjust/keladjust.h>

#include <optional>

#include "host/Record.h"
#include "lut/Lattice.h"

bool keladjustBake(const _AdjustParam* record, size_t recordBytes, int dimension, bool redFastest,
                   float* points) {
    constexpr int smallest = 2;
    constexpr int largest = 256;
    const std::optional<_AdjustParam> settings = keladjust::readRecord(record, recordBytes);
    if (!settings || dimension < smallest || dimension > largest || points == nullptr) return false;
    try {
        keladjust::bakeLattice(*settings, static_cast<unsigned>(dimension), redFastest, points);
        return true;
    } catch (...) {
        return false;
    }
}
