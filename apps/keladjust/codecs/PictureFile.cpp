#include "codecs/PictureFile.h"

#include "files/InputFile.h"

namespace keladjust::app {

PictureFile::PictureFile(const std::filesystem::path& path, const PixelBound& bound)
    : bytes(readFile(path, {.largest = bound.largestFile(), .checkStart = codecForFile})),
      codec(codecForFile(bytes)) {}

}  // namespace keladjust::app
