#include "golden/Pictures.h"

#include <fstream>
#include <map>
#include <stdexcept>
#include <string>

namespace keladjust::test {

namespace {

constexpr unsigned photographWidth = 122;
constexpr unsigned photographHeight = 82;

// A stored one: decoders differ between systems.
HostPicture readPhotograph() {
    std::ifstream file(KELADJUST_GOLDEN_FOLDER "/photograph.ppm", std::ios::binary);
    std::string kind;
    unsigned width = 0;
    unsigned height = 0;
    unsigned maximum = 0;
    file >> kind >> width >> height >> maximum;
    file.get();
    if (kind != "P6" || width != photographWidth || height != photographHeight || maximum != 255) {
        throw std::runtime_error(KELADJUST_GOLDEN_FOLDER
                                 "/photograph.ppm is not what it should be");
    }
    HostPicture photograph(width, height, 32, IMAGE_FORMAT_RGBA);
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            const auto next = [&file] { return static_cast<std::uint8_t>(file.get()); };
            _tagMyRGBQUAD colour{};
            colour.red = next();
            colour.green = next();
            colour.blue = next();
            // Opaque, but for a corner that fades out.
            colour.alpha = static_cast<std::uint8_t>(x + y < 40 ? 6 * (x + y) : 255);
            photograph.setPixel(x, y, colour);
        }
    }
    if (!file) throw std::runtime_error(KELADJUST_GOLDEN_FOLDER "/photograph.ppm is too short");
    return photograph;
}

// Every mixture of sixteen reds, greens and blues.
HostPicture colourLattice() {
    HostPicture lattice(64, 64, 32, IMAGE_FORMAT_RGBA);
    for (unsigned i = 0; i < 64 * 64; ++i) {
        const auto level = [i](unsigned shift) {
            return static_cast<std::uint8_t>((i >> shift & 15) * 17);
        };
        lattice.setPixel(i % 64, i / 64, {level(0), level(4), level(8), 255});
    }
    return lattice;
}

// Copies of the picture side by side, each a little darker than the one before.
HostPicture repeated(HostPicture& picture, unsigned columns, unsigned rows) {
    const unsigned width = picture.image()->GetWidth();
    const unsigned height = picture.image()->GetHeight();
    HostPicture wall(width * columns, height * rows, 32, IMAGE_FORMAT_BGRA);
    for (unsigned y = 0; y < height * rows; ++y) {
        for (unsigned x = 0; x < width * columns; ++x) {
            const unsigned tile = y / height * columns + x / width;
            const auto darker = [tile](std::uint8_t value) {
                return static_cast<std::uint8_t>(value * (40 - tile) / 40);
            };
            const _tagMyRGBQUAD c = picture.pixel(x % width, y % height);
            wall.setPixel(x, y, {darker(c.blue), darker(c.green), darker(c.red), c.alpha});
        }
    }
    return wall;
}

HostPicture converted(HostPicture& picture, PixelFormat format) {
    const unsigned width = picture.image()->GetWidth();
    const unsigned height = picture.image()->GetHeight();
    HostPicture result(width, height, format.bpp, format.format);
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) result.setPixel(x, y, picture.pixel(x, y));
    }
    return result;
}

std::vector<HostPicture> makePictures(unsigned bpp) {
    HostPicture photograph = readPhotograph();
    HostPicture lattice = colourLattice();
    std::vector<HostPicture> pictures;
    for (const PixelFormat format : everyFormat) {
        if (format.bpp != bpp) continue;
        pictures.push_back(converted(photograph, format));
        pictures.push_back(converted(lattice, format));
        for (const auto& [width, height] :
             {std::pair{1u, 1u}, {1u, 9u}, {9u, 1u}, {3u, 2u}, {5u, 7u}, {33u, 17u}}) {
            pictures.emplace_back(width, height, bpp, format.format).fillRandom(width * height);
        }
    }
    if (bpp == 32) pictures.push_back(repeated(photograph, 3, 4));
    return pictures;
}

}  // namespace

const std::vector<HostPicture>& goldenPictures(unsigned bpp) {
    static std::map<unsigned, std::vector<HostPicture>> byDepth;
    const auto [place, isNew] = byDepth.try_emplace(bpp);
    if (isNew) place->second = makePictures(bpp);
    return place->second;
}

}  // namespace keladjust::test
