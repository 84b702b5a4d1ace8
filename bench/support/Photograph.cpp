#include "support/Photograph.h"

#include <cstddef>
#include <fstream>
#include <stdexcept>

namespace keladjust::bench {

CxImage& photograph(std::int64_t columns, std::int64_t rows) {
    static CxImage image;
    if (image.GetWidth() == columns && image.GetHeight() == rows) return image;
    constexpr std::streamoff fileWidth = 4000;
    image.Create(static_cast<unsigned>(columns), static_cast<unsigned>(rows), 32,
                 IMAGE_FORMAT_BGRA);
    std::ifstream file(KELADJUST_BENCH_PHOTOGRAPH, std::ios::binary);
    for (unsigned y = 0; y < image.GetHeight(); ++y) {
        file.seekg(4 * fileWidth * y);
        file.read(reinterpret_cast<char*>(image.GetBits() + std::size_t{image.GetEffWidth()} * y),
                  4 * columns);
    }
    if (!file) throw std::runtime_error(KELADJUST_BENCH_PHOTOGRAPH " cannot be read");
    return image;
}

}  // namespace keladjust::bench
