#ifndef KELADJUST_APP_PICTURES_PIXELBOUND_H
#define KELADJUST_APP_PICTURES_PIXELBOUND_H

#include <cstddef>
#include <cstdint>
#include <optional>

namespace keladjust::app {

/// How many pixels, width times height, a file may decode to. A few bytes can claim billions: it is
/// asked before memory is taken for any of them.
class PixelBound {
public:
    /// 1 GiB at four bytes a pixel.
    static constexpr std::uint64_t usual = std::uint64_t{1} << 28;

    /// The usual bound, and no more than 16384 pixels for each byte of the file. No PNG is packed
    /// as tightly as that, and photographs are far from it.
    PixelBound() = default;

    /// A bound that somebody has asked for, whatever the size of a file.
    explicit PixelBound(std::uint64_t pixels) : given_(pixels) {}

    /// For a file of this size.
    std::uint64_t pixels(std::size_t fileSize) const;

    /// The largest piece of memory that a codec may need beside the picture: all of it once more,
    /// in 16 bits.
    std::uint64_t workingBytes(std::size_t fileSize) const;

    /// No file is larger that holds a picture within the bound.
    std::uint64_t largestFile() const;

    /// @throws Failure if a file of this size may not hold such a picture
    void check(std::size_t fileSize, std::uint64_t width, std::uint64_t height) const;

private:
    std::optional<std::uint64_t> given_;
};

}  // namespace keladjust::app

#endif
