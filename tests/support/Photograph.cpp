#include "support/Photograph.h"

#include <fstream>
#include <stdexcept>

namespace keladjust::test {

HostPicture photographCrop(const std::string& name, unsigned x, unsigned y, unsigned width,
                           unsigned height) {
    const std::string path = KELADJUST_DECODED_PHOTO_DIR "/" + name + ".ppm";
    std::ifstream file(path, std::ios::binary);
    std::string magic;
    unsigned fullWidth = 0;
    unsigned fullHeight = 0;
    unsigned maximum = 0;
    file >> magic >> fullWidth >> fullHeight >> maximum;
    file.get();  // the one white space before the pixels
    if (!file || magic != "P6" || maximum != 255) {
        throw std::runtime_error(path + " is not a decoded photograph");
    }
    if (x + width > fullWidth || y + height > fullHeight) {
        throw std::runtime_error(path + " is smaller than its crop");
    }
    const std::streamoff pixels = file.tellg();

    HostPicture picture(width, height, 24, IMAGE_FORMAT_RGB);
    for (unsigned row = 0; row < height; ++row) {
        std::uint8_t* const bytes =
            picture.bits() + std::size_t{row} * picture.image()->GetEffWidth();
        file.seekg(pixels + std::streamoff{3} * (std::streamoff{fullWidth} * (y + row) + x));
        file.read(reinterpret_cast<char*>(bytes), 3 * static_cast<std::streamsize>(width));
    }
    if (!file) throw std::runtime_error(path + " ends early");
    return picture;
}

}  // namespace keladjust::test
