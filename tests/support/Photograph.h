#ifndef KELADJUST_TESTS_SUPPORT_PHOTOGRAPH_H
#define KELADJUST_TESTS_SUPPORT_PHOTOGRAPH_H

#include <string>

#include "support/HostPicture.h"

namespace keladjust::test {

/// A crop of a real photograph, 24-bit RGB.
///
/// @param name of one that the build has decoded (tests/CMakeLists.txt), such as
/// "nature/FreshFlower"
/// @throws std::runtime_error naming what is missing: the photograph or a part of it
HostPicture photographCrop(const std::string& name, unsigned x, unsigned y, unsigned width,
                           unsigned height);

}  // namespace keladjust::test

#endif
