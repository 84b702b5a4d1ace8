// What the native library makes of a picture or of settings, for comparison: raw pixels in and out,
// settings by name, on one thread.
//
//   native_adjuster adjust <order> <width> <height> <in> <out> [<setting>=<value>...]
//   native_adjuster time <order> <width> <height> <in> <runs> [<setting>=<value>...]
//   native_adjuster lut <dimension> <order> <out> [<setting>=<value>...]

#include <keladjust/keladjust.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <fstream>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Order {
    const char* name;
    _ImagePixelFormat format;
    unsigned bytes;
};
constexpr Order orders[] = {{"gray", IMAGE_FORMAT_GRAY, 1},
                            {"rgb", IMAGE_FORMAT_RGB, 3},
                            {"bgr", IMAGE_FORMAT_BGR, 3},
                            {"rgba", IMAGE_FORMAT_RGBA, 4},
                            {"bgra", IMAGE_FORMAT_BGRA, 4}};

using Words = std::span<const std::string>;

void store(_AdjustParam& record, const KeladjustSetting& setting, double value) {
    char* const slot = reinterpret_cast<char*>(&record) + sizeof(float) * setting.slot;
    if (setting.isInteger != 0) {
        const auto stored = static_cast<std::int32_t>(value);
        std::memcpy(slot, &stored, sizeof stored);
    } else {
        const auto stored = static_cast<float>(value);
        std::memcpy(slot, &stored, sizeof stored);
    }
}

_AdjustParam recordOf(Words words) {
    int count = 0;
    const KeladjustSetting* const first = keladjustSettings(&count);
    const std::span settings(first, static_cast<std::size_t>(count));
    _AdjustParam record{};
    for (const auto& setting : settings) store(record, setting, setting.usual);
    for (const std::string& word : words) {
        const std::size_t sign = word.find('=');
        const std::string name = word.substr(0, sign);
        bool known = false;
        for (const auto& setting : settings) {
            if (name != setting.name) continue;
            store(record, setting, std::strtod(word.c_str() + sign + 1, nullptr));
            known = true;
        }
        if (!known) throw std::runtime_error("no setting is called " + name);
    }
    return record;
}

struct Picture {
    Order order{};
    unsigned width = 0;
    unsigned height = 0;
    std::vector<unsigned char> bits;  ///< rows padded to four bytes with zeros

    std::size_t tightRow() const { return std::size_t{width} * order.bytes; }
    std::size_t paddedRow() const { return (tightRow() + 3) / 4 * 4; }
};

Picture readPicture(Words words) {
    Picture picture;
    for (const Order& order : orders) {
        if (words[0] == order.name) picture.order = order;
    }
    picture.width = static_cast<unsigned>(std::stoul(words[1]));
    picture.height = static_cast<unsigned>(std::stoul(words[2]));
    picture.bits.resize(picture.paddedRow() * picture.height);
    std::ifstream file(words[3], std::ios::binary);
    for (unsigned y = 0; y < picture.height; ++y) {
        file.read(reinterpret_cast<char*>(picture.bits.data()) + picture.paddedRow() * y,
                  static_cast<std::streamsize>(picture.tightRow()));
    }
    if (!file) throw std::runtime_error(words[3] + " holds too little");
    return picture;
}

void adjust(Picture& picture, const _AdjustParam& record) {
    unsigned char* bits = picture.bits.data();
    CxImage* const image = createCxImage(&bits, picture.width, picture.height,
                                         8 * picture.order.bytes, picture.order.format);
    doAdjust(image, record);
    releaseCxImage(image);
}

void write(const std::string& name, const char* bytes, std::size_t row, std::size_t stride,
           std::size_t rows) {
    std::ofstream file(name, std::ios::binary);
    for (std::size_t y = 0; y < rows; ++y) {
        file.write(bytes + stride * y, static_cast<std::streamsize>(row));
    }
    if (!file.flush()) throw std::runtime_error(name + " cannot be written");
}

void runAdjust(Words words) {
    Picture picture = readPicture(words);
    adjust(picture, recordOf(words.subspan(5)));
    write(words[4], reinterpret_cast<const char*>(picture.bits.data()), picture.tightRow(),
          picture.paddedRow(), picture.height);
}

/// Milliseconds of processor time of each run, one a line, after one that does not count.
void runTime(Words words) {
    const Picture original = readPicture(words);
    const _AdjustParam record = recordOf(words.subspan(5));
    const int runs = std::stoi(words[4]);
    Picture picture = original;
    adjust(picture, record);
    for (int run = 0; run < runs; ++run) {
        std::memcpy(picture.bits.data(), original.bits.data(), original.bits.size());
        const std::clock_t begin = std::clock();
        adjust(picture, record);
        const auto took = static_cast<double>(std::clock() - begin);
        std::printf("%.4f\n", 1000.0 * took / CLOCKS_PER_SEC);
    }
}

void runLut(Words words) {
    const int dimension = std::stoi(words[0]);
    const _AdjustParam record = recordOf(words.subspan(3));
    const auto edge = static_cast<std::size_t>(dimension);
    std::vector<float> points(3 * edge * edge * edge);
    if (!keladjustBake(&record, sizeof record, dimension, words[1] == "red-fastest",
                       points.data())) {
        throw std::runtime_error("the table cannot be baked");
    }
    const std::size_t bytes = points.size() * sizeof(float);
    write(words[2], reinterpret_cast<const char*>(points.data()), bytes, bytes, 1);
}

void run(Words words) {
    if (words.size() >= 6 && words[0] == "adjust") return runAdjust(words.subspan(1));
    if (words.size() >= 6 && words[0] == "time") return runTime(words.subspan(1));
    if (words.size() >= 4 && words[0] == "lut") return runLut(words.subspan(1));
    throw std::runtime_error("see the head of native_adjuster.cpp");
}

}  // namespace

int main(int count, char** arguments) {
    setMaxThreads(1);
    try {
        run(std::vector<std::string>(arguments + 1, arguments + count));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "native_adjuster: %s\n", error.what());
        return 1;
    }
}
