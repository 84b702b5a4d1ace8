#ifndef KELADJUST_TESTS_SUPPORT_PHOTOGRAPH_H
#define KELADJUST_TESTS_SUPPORT_PHOTOGRAPH_H

#include <string>

#include "support/HostPicture.h"

namespace keladjust::test {

/// A crop of a real photograph, 24-bit RGB, decoded by ffmpeg.
///
/// @param name path below KELADJUST_PHOTO_DIR
/// @throws std::runtime_error naming what is missing: the photograph or ffmpeg
HostPicture photographCrop(const std::string& name, unsigned x, unsigned y, unsigned width,
                           unsigned height);

/// Runs `ffmpeg` with the arguments given.
/// @throws std::runtime_error if it is missing or fails
void runFfmpeg(const std::string& arguments);

}  // namespace keladjust::test

#endif
