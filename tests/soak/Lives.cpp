// A host that loads the library, starts its engine, adjusts, stops and unloads, over and over:
//   soak_lives <library> <prefix of the configuration> <times>

#include <keladjust/CxImage.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/SharedLibrary.h"
#include "soak/Readings.h"
#include "support/TemporaryFolder.h"

namespace {

/// The library while it is loaded.
class Library {
public:
    explicit Library(const char* path)
        : handle_(keladjust::platform::loadSharedLibrary(path, why_)) {}
    ~Library() {
        if (handle_ != nullptr) keladjust::platform::unloadSharedLibrary(handle_);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    bool isLoaded() const { return handle_ != nullptr; }
    template <class Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(keladjust::platform::functionOf(handle_, name));
    }

private:
    std::string why_;
    void* handle_;
};

bool check(bool condition, const char* what, int time) {
    if (!condition) std::fprintf(stderr, "failed in life %d: %s\n", time, what);
    return condition;
}

// The pixels after an adjustment on the GPU, none if there was none.
std::vector<std::uint8_t> adjusted(const Library& library) {
    constexpr unsigned width = 320;
    constexpr unsigned height = 213;
    std::vector<std::uint8_t> pixels(4 * width * height);
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(i * 7);
    std::uint8_t* bits = pixels.data();
    _AdjustParam record{};
    record.temperature = 11500;
    record.exposure = 30;
    record.sharpen = 20;
    KeladjustRun wishes{};
    wishes.size = sizeof wishes;
    wishes.path = KELADJUST_GPU;
    const auto create = library.function<decltype(createCxImage)>("createCxImage");
    const auto run = library.function<decltype(keladjustRun)>("keladjustRun");
    const auto release = library.function<decltype(releaseCxImage)>("releaseCxImage");
    CxImage* const image = create(&bits, width, height, 32, IMAGE_FORMAT_BGRA);
    const bool done = run(image, &record, sizeof record, &wishes) == KELADJUST_DONE;
    release(image);
    return done ? pixels : std::vector<std::uint8_t>{};
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::fprintf(stderr, "usage: soak_lives <library> <prefix of the configuration> <times>\n");
        return EXIT_FAILURE;
    }
    const int times = std::atoi(arguments[3]);
    // The first ones fill what the system and the driver keep to the end of the process.
    const bool isShort = times < 100;
    const int warmUp = isShort ? times / 3 : 30;
    const keladjust::test::TemporaryFolder folder;
    const std::string log = (folder / "").string();
    keladjust::test::Readings readings;
    std::vector<std::uint8_t> expected;
    for (int time = 0; time < times; ++time) {
        {
            const Library library(arguments[1]);
            if (!check(library.isLoaded(), "load", time)) return EXIT_FAILURE;
            library.function<decltype(setLogPath)>("setLogPath")(log.c_str());
            const auto start = library.function<decltype(initOgreRunTime)>("initOgreRunTime");
            if (!check(start(arguments[2], arguments[2]), "start", time)) return EXIT_FAILURE;
            const auto pixels = adjusted(library);
            if (time == 0) expected = pixels;
            if (!check(!pixels.empty() && pixels == expected, "adjust", time)) return EXIT_FAILURE;
            library.function<decltype(releaseOgre)>("releaseOgre")();
        }
        if (time >= warmUp) readings.take();
    }
    // Every start enters the driver's framebuffer configurations into a table that the system's
    // dispatcher of OpenGL keeps for good, until their addresses repeat, and the engine's own
    // modules lose some memory as they go: 7 kilobytes in all, and 37 under Wine, more in the first
    // lives, in which the heap finds its size, too. The picture would be 266.
#if defined(_WIN32)
    constexpr double ofModules = 64.0;
#else
    constexpr double ofModules = 16.0;
#endif
    return readings.areFlat(isShort ? 128.0 : ofModules) ? EXIT_SUCCESS : EXIT_FAILURE;
}
