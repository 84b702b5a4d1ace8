#ifndef KELADJUST_TESTS_GOLDEN_PICTURES_H
#define KELADJUST_TESTS_GOLDEN_PICTURES_H

#include <vector>

#include "support/HostPicture.h"

namespace keladjust::test {

/// The pictures of `bpp` bits that golden results are taken from, in each format of that depth: a
/// photograph, a lattice of colours and noise in odd sizes. Those of 32 bits end with one that is
/// large enough for several threads.
const std::vector<HostPicture>& goldenPictures(unsigned bpp);

}  // namespace keladjust::test

#endif
