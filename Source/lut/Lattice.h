#ifndef KELADJUST_LUT_LATTICE_H
#define KELADJUST_LUT_LATTICE_H

#include <keladjust/keladjust.h>

namespace keladjust {

/// Bakes the settings into a cubic lattice, from 2 to 256 colours along each axis, one after
/// another with red or blue varying fastest, three floats each.
/// @throws std::bad_alloc, before anything is written
void bakeLattice(const _AdjustParam& record, unsigned edge, bool redFastest, float* points);

}  // namespace keladjust

#endif
