#ifndef KELADJUST_LUT_LIBRARYLUT_H
#define KELADJUST_LUT_LIBRARYLUT_H

#include <keladjust/keladjust.h>

/// The one colour table of the library. Not locked: hosts call from one thread at a time.
namespace keladjust {

/// Creates the table if there is none and makes its lattice. If memory is short there is none, and
/// bakes give null.
void buildLibraryLut() noexcept;

/// Bakes the settings, creating the table without a lattice if there is none.
/// @return the lattice, overwritten by the next bake; null if it was never built
float* bakeLibraryLut(const _AdjustParam& parameters) noexcept;

/// Bakes the settings and writes them as a cube file; see CubeLut::write().
bool writeLibraryLut(const _AdjustParam& parameters, const char* path) noexcept;

/// Frees table and lattice; harmless if there is none.
void destroyLibraryLut() noexcept;

}  // namespace keladjust

#endif
