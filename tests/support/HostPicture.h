#ifndef KELADJUST_TESTS_SUPPORT_HOSTPICTURE_H
#define KELADJUST_TESTS_SUPPORT_HOSTPICTURE_H

#include <keladjust/CxImage.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace keladjust::test {

/// A picture as a host holds it: a buffer of exactly the rows' bytes between guard bytes, wrapped
/// in an adopting CxImage.
class HostPicture {
public:
    /// Pixels and padding start as zeros.
    HostPicture(unsigned width, unsigned height, unsigned bpp, _ImagePixelFormat format);
    /// A copy of the pixels in a buffer of its own.
    HostPicture(const HostPicture& other);
    HostPicture& operator=(const HostPicture&) = delete;

    CxImage* image() { return &image_; }
    std::uint8_t* bits() { return bits_; }
    const std::uint8_t* bits() const { return bits_; }
    std::size_t size() const { return size_; }

    /// Fills pixels and padding with bytes that depend on `seed` alone, the same on every platform.
    HostPicture& fillRandom(std::uint32_t seed);
    /// The whole buffer, padding included.
    std::vector<std::uint8_t> bytes() const;
    /// False once a byte before or behind the buffer has changed.
    bool guardsIntact() const;

    _tagMyRGBQUAD pixel(unsigned x, unsigned y);
    void setPixel(unsigned x, unsigned y, _tagMyRGBQUAD colour);

private:
    std::size_t size_;
    std::vector<std::uint8_t> storage_;
    std::uint8_t* bits_;
    CxImage image_;
};

/// BGRA, every byte of one value, alpha among them.
HostPicture flatPicture(unsigned width, unsigned height, std::uint8_t value);

/// BGRA, every pixel of one grey with an alpha of 77.
HostPicture greyPicture(unsigned width, unsigned height, std::uint8_t value);

/// 4096 x 4096 BGRA with every colour once: pixel i (in row order) has red i >> 16, green i >> 8,
/// blue i; alpha is a mix of the three.
HostPicture everyColour();

/// Every channel byte once: 256 x 1 BGRA with all three channels i at column i.
HostPicture everyByte();

/// The pairs of depth and format that stages know, as (bpp, format).
struct PixelFormat {
    unsigned bpp;
    _ImagePixelFormat format;
};
inline constexpr PixelFormat everyFormat[] = {
    {8, IMAGE_FORMAT_GRAY},  {16, IMAGE_FORMAT_RGB}, {16, IMAGE_FORMAT_BGR},
    {24, IMAGE_FORMAT_RGB},  {24, IMAGE_FORMAT_BGR}, {32, IMAGE_FORMAT_RGBA},
    {32, IMAGE_FORMAT_BGRA},
};

}  // namespace keladjust::test

bool operator==(const _tagMyRGBQUAD& a, const _tagMyRGBQUAD& b);

#endif
