#include "support/HostPicture.h"

#include <algorithm>
#include <random>

namespace keladjust::test {

namespace {

constexpr std::size_t guardBytes = 4096;
constexpr std::uint8_t guard = 0xA5;

std::size_t bufferSize(unsigned width, unsigned height, unsigned bpp) {
    return (std::size_t{width} * bpp + 31) / 32 * 4 * height;
}

}  // namespace

HostPicture::HostPicture(unsigned width, unsigned height, unsigned bpp, _ImagePixelFormat format)
    : size_(bufferSize(width, height, bpp)),
      storage_(size_ + 2 * guardBytes, guard),
      bits_(storage_.data() + guardBytes),
      image_(&bits_, width, height, bpp, format) {
    std::fill_n(bits_, size_, std::uint8_t{0});
}

HostPicture::HostPicture(const HostPicture& other)
    : HostPicture(other.image_.GetWidth(), other.image_.GetHeight(), other.image_.GetBpp(),
                  other.image_.format) {
    std::copy_n(other.bits_, size_, bits_);
}

HostPicture& HostPicture::fillRandom(std::uint32_t seed) {
    std::mt19937 generator(seed);
    std::generate_n(bits_, size_, [&] { return static_cast<std::uint8_t>(generator() >> 24); });
    return *this;
}

std::vector<std::uint8_t> HostPicture::bytes() const {
    return {bits_, bits_ + size_};
}

bool HostPicture::guardsIntact() const {
    const auto intact = [](std::uint8_t byte) { return byte == guard; };
    const std::uint8_t* begin = storage_.data();
    return std::all_of(begin, begin + guardBytes, intact) &&
           std::all_of(begin + guardBytes + size_, begin + storage_.size(), intact);
}

_tagMyRGBQUAD HostPicture::pixel(unsigned x, unsigned y) {
    return image_.GetPixelColor(static_cast<int>(x), static_cast<int>(y), true);
}

void HostPicture::setPixel(unsigned x, unsigned y, _tagMyRGBQUAD colour) {
    image_.SetPixelColor(static_cast<int>(x), static_cast<int>(y), colour);
}

HostPicture flatPicture(unsigned width, unsigned height, std::uint8_t value) {
    HostPicture picture(width, height, 32, IMAGE_FORMAT_BGRA);
    std::fill_n(picture.bits(), picture.size(), value);
    return picture;
}

HostPicture greyPicture(unsigned width, unsigned height, std::uint8_t value) {
    HostPicture picture(width, height, 32, IMAGE_FORMAT_BGRA);
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) picture.setPixel(x, y, {value, value, value, 77});
    }
    return picture;
}

HostPicture everyColour() {
    HostPicture picture(4096, 4096, 32, IMAGE_FORMAT_BGRA);
    std::uint8_t* p = picture.bits();
    for (std::uint32_t i = 0; i < 1u << 24; ++i, p += 4) {
        p[0] = static_cast<std::uint8_t>(i);
        p[1] = static_cast<std::uint8_t>(i >> 8);
        p[2] = static_cast<std::uint8_t>(i >> 16);
        p[3] = static_cast<std::uint8_t>(i ^ (i >> 8) ^ (i >> 16));
    }
    return picture;
}

HostPicture everyByte() {
    HostPicture picture(256, 1, 32, IMAGE_FORMAT_BGRA);
    for (unsigned i = 0; i < 256; ++i) {
        const auto value = static_cast<std::uint8_t>(i);
        picture.setPixel(i, 0, {value, value, value, 255});
    }
    return picture;
}

}  // namespace keladjust::test

bool operator==(const _tagMyRGBQUAD& a, const _tagMyRGBQUAD& b) {
    return a.blue == b.blue && a.green == b.green && a.red == b.red && a.alpha == b.alpha;
}
