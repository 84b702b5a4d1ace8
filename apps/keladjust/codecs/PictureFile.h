#ifndef KELADJUST_APP_CODECS_PICTUREFILE_H
#define KELADJUST_APP_CODECS_PICTUREFILE_H

#include <filesystem>

#include "codecs/Codec.h"
#include "files/Bytes.h"

namespace keladjust::app {

/// A picture file in memory, with who can read it.
struct PictureFile {
    /// What is no picture is given back after its first bytes, and so is what has no end.
    ///
    /// @throws Failure if it cannot be read, is of none of the formats, or larger than a picture
    ///         within `bound` can be
    PictureFile(const std::filesystem::path& path, const PixelBound& bound);

    Bytes bytes;
    const Codec& codec;
};

}  // namespace keladjust::app

#endif
