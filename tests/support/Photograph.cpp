#include "support/Photograph.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>

namespace keladjust::test {

namespace {

namespace fs = std::filesystem;

// Test processes run side by side, so names in the temporary folder must differ.
fs::path temporaryFile() {
    return fs::temp_directory_path() /
           ("keladjust-photograph-" + std::to_string(std::random_device()()) + ".rgb");
}

}  // namespace

void runFfmpeg(const std::string& arguments) {
    const std::string command = "ffmpeg -nostdin -v error -y " + arguments;
    if (std::system(command.c_str()) != 0) {
        throw std::runtime_error("failed (Debian package ffmpeg needed): " + command);
    }
}

HostPicture photographCrop(const std::string& name, unsigned x, unsigned y, unsigned width,
                           unsigned height) {
    const fs::path photograph = fs::path(KELADJUST_PHOTO_DIR) / name;
    if (!fs::exists(photograph)) {
        throw std::runtime_error(
            photograph.string() +
            " is missing: install mate-backgrounds or set KELADJUST_PHOTO_DIR");
    }
    const fs::path raw = temporaryFile();
    runFfmpeg("-i \"" + photograph.string() + "\" -vf crop=" + std::to_string(width) + ":" +
              std::to_string(height) + ":" + std::to_string(x) + ":" + std::to_string(y) +
              " -f rawvideo -pix_fmt rgb24 \"" + raw.string() + "\"");

    HostPicture picture(width, height, 24, IMAGE_FORMAT_RGB);
    std::ifstream file(raw, std::ios::binary);
    for (unsigned row = 0; row < height; ++row) {
        std::uint8_t* const bytes =
            picture.bits() + std::size_t{row} * picture.image()->GetEffWidth();
        file.read(reinterpret_cast<char*>(bytes), std::streamsize{3} * width);
    }
    const bool complete = file.good();
    file.close();
    fs::remove(raw);
    if (!complete) throw std::runtime_error(photograph.string() + " is smaller than its crop");
    return picture;
}

}  // namespace keladjust::test
