#ifndef KELADJUST_TESTS_PICTURES_H
#define KELADJUST_TESTS_PICTURES_H

#include <array>
#include <filesystem>
#include <string>

#include "files/Bytes.h"
#include "pictures/Photo.h"

namespace keladjust::test {

/// A photograph of the collection by its name there, such as "nature/Dune.jpg". It must exist.
std::string photograph(const std::string& name);

/// A picture without any pattern, the same each time.
app::Photo noise(std::uint32_t width, std::uint32_t height, app::ChannelLayout layout,
                 bool hasAlpha = false);

/// What a file decodes to; its name plays no part.
app::Photo decodeFile(const std::filesystem::path& path);

/// The mean of red, green and blue.
std::array<double, 3> meanColour(const app::Photo& photo);
double meanBrightness(const app::Photo& photo);

/// Fails unless both have the same size, layout and visible values.
void expectSamePixels(const app::Photo& actual, const app::Photo& expected);

/// Gives a picture file an EXIF orientation, a camera, a thumbnail, pixel sizes, an XMP title, an
/// IPTC keyword and testProfile().
void annotate(const std::filesystem::path& path, int orientation);

/// A colour profile for RGB that is too long for one JPEG segment.
app::Bytes testProfile();

}  // namespace keladjust::test

#endif
