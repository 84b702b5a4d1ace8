// A host that adjusts pictures of ever other sizes, on either path in turn:
//   soak_sizes <prefix of the configuration> <times>

#include <keladjust/CxImage.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "soak/Readings.h"
#include "support/TemporaryFolder.h"

namespace {

constexpr unsigned largest = 400;
constexpr std::size_t guardBytes = 64;
constexpr std::uint8_t guard = 0xA5;

/// Adjusts a grey picture, all of which must come out in one colour: its stages look at each pixel
/// alone.
bool adjustsAll(unsigned width, unsigned height, std::int32_t path) {
    static std::vector<std::uint8_t> memory(4 * largest * largest + guardBytes);
    const std::size_t bytes = std::size_t{4} * width * height;
    std::fill(memory.begin(), memory.end(), guard);
    std::fill_n(memory.begin(), bytes, std::uint8_t{100});
    std::uint8_t* bits = memory.data();
    _AdjustParam record{};
    record.temperature = 11500;
    record.exposure = 30;
    KeladjustRun wishes{};
    wishes.size = sizeof wishes;
    wishes.path = path;
    CxImage* const image = createCxImage(&bits, width, height, 32, IMAGE_FORMAT_BGRA);
    const bool done = keladjustRun(image, &record, sizeof record, &wishes) == KELADJUST_DONE;
    releaseCxImage(image);
    bool right = done && memory[0] != 100;
    for (std::size_t i = 0; i < bytes; i += 4) {
        right = right && memory[i] == memory[0] && memory[i + 1] == memory[1] &&
                memory[i + 2] == memory[2] && memory[i + 3] == 100;
    }
    for (std::size_t i = bytes; i < bytes + guardBytes; ++i) right = right && memory[i] == guard;
    return right;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: soak_sizes <prefix of the configuration> <times>\n");
        return EXIT_FAILURE;
    }
    const keladjust::test::TemporaryFolder folder;
    setLogPath((folder / "").string().c_str());
    if (!initOgreRunTime(arguments[1], arguments[1])) return EXIT_FAILURE;
    const int times = std::atoi(arguments[2]);
    const bool isShort = times <= 1000;
    const int step = isShort ? 2 : times / 500;
    keladjust::test::Readings readings;
    std::mt19937 random(1);
    for (int time = 0; time < times; ++time) {
        const unsigned width = 1 + static_cast<unsigned>(random() % largest);
        const unsigned height = 1 + static_cast<unsigned>(random() % largest);
        if (!adjustsAll(width, height, time % 2 == 0 ? KELADJUST_CPU : KELADJUST_GPU)) {
            std::fprintf(stderr, "failed: %u x %u, time %d\n", width, height, time);
            return EXIT_FAILURE;
        }
        // As many readings as make a line, from when the largest sizes have been seen.
        if (time >= times / 5 && time % step == 0) readings.take();
    }
    releaseOgre();
    // Half a kilobyte a picture. In the short form the heap still finds its size; a picture that
    // stayed each time would be 160.
    return readings.areFlat((isShort ? 32.0 : 0.5) * step) ? EXIT_SUCCESS : EXIT_FAILURE;
}
