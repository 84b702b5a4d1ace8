#include "pictures/PixelBound.h"

#include <algorithm>
#include <string>

#include "text/Failure.h"

namespace keladjust::app {

namespace {

constexpr std::uint64_t pixelsOfAByte = std::uint64_t{1} << 14;

/// Four channels of 16 bits, which is the most that any codec takes; files may hold more.
constexpr std::uint64_t deepestPixel = 8;
constexpr std::uint64_t deepestPixelInFile = 16;
/// Directories and tables; in a file, metadata too.
constexpr std::uint64_t besidePixels = std::uint64_t{1} << 22;
constexpr std::uint64_t besidePixelsInFile = std::uint64_t{1} << 26;

}  // namespace

std::uint64_t PixelBound::pixels(std::size_t fileSize) const {
    if (given_) return *given_;
    const std::uint64_t bytes = std::min<std::uint64_t>(fileSize, usual / pixelsOfAByte);
    return pixelsOfAByte * bytes;
}

std::uint64_t PixelBound::workingBytes(std::size_t fileSize) const {
    return besidePixels + deepestPixel * pixels(fileSize);
}

std::uint64_t PixelBound::largestFile() const {
    return besidePixelsInFile + deepestPixelInFile * given_.value_or(usual);
}

void PixelBound::check(std::size_t fileSize, std::uint64_t width, std::uint64_t height) const {
    // Neither factor has more than 32 bits in any format.
    const std::uint64_t claimed = width * height;
    if (claimed <= pixels(fileSize)) return;
    const std::string size = std::to_string(width) + " x " + std::to_string(height);
    const std::uint64_t most = given_.value_or(usual);
    if (claimed > most) {
        throw Failure("the picture is too large (" + size + " pixels; allowed are " +
                      std::to_string(most) + "); make it smaller first, or allow it with " +
                      "--max-pixels " + std::to_string(claimed));
    }
    throw Failure("a file of " + std::to_string(fileSize) + " bytes claims " + size +
                  " pixels, as files do that are made to exhaust memory; if you trust it, add " +
                  "--max-pixels " + std::to_string(claimed));
}

}  // namespace keladjust::app
