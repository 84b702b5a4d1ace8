// Pictures for which the graphics driver has no memory. A process of its own, because what it may
// take is limited for all of it.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/HostPicture.h"

namespace {

namespace fs = std::filesystem;
using keladjust::test::HostPicture;

constexpr rlim_t megabyte = 1 << 20;

/// The process gets this much more memory, and no more, while it lives.
class MemoryLimit {
public:
    explicit MemoryLimit(rlim_t more) {
        rlim_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &before_);
        const rlimit limit{pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + more,
                           before_.rlim_max};
        setrlimit(RLIMIT_AS, &limit);
    }
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &before_); }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

private:
    rlimit before_{};
};

/// Tones and a colour range, each of which is a render.
_AdjustParam settings(bool tones, bool ranges) {
    _AdjustParam p{};
    p.temperature = 11500;
    if (tones) p.exposure = 20;
    if (ranges) p.range[KELADJUST_RANGE_BLUE] = {180, 300, 0, 0, 50};
    return p;
}

class Memory : public testing::Test {
protected:
    Memory() {
        prefix =
            (fs::temp_directory_path() / ("keladjust-memory-" + std::to_string(getpid()))).string();
        setLogPath(prefix.c_str());
    }
    ~Memory() override {
        releaseOgre();
        fs::remove(prefix + "Ogre.log");
    }
    std::string log() const {
        std::ifstream file(prefix + "Ogre.log");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static std::vector<std::uint8_t> adjusted(HostPicture picture, const _AdjustParam& p) {
        doAdjust(picture.image(), p);
        return picture.bytes();
    }

    std::string prefix;
};

// Each render is all or nothing, however little there is, and all again when there is more.
TEST_F(Memory, ThatTheDriverLacksSparesThePicture) {
    ASSERT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));
    // Of 34 MB: blocks that the C library asks the system for, and gives back, one by one.
    HostPicture large(4096, 2100, 32, IMAGE_FORMAT_BGRA);
    large.fillRandom(1);
    const HostPicture small(64, 64, 32, IMAGE_FORMAT_BGRA);
    const _AdjustParam both = settings(true, true);
    const std::vector<std::uint8_t> outcomes[] = {
        large.bytes(), adjusted(large, settings(true, false)),
        adjusted(large, settings(false, true)), adjusted(large, both)};
    int spared = 0;
    for (const rlim_t more : {1, 40, 75, 110}) {
        adjusted(small, both);  // gives the large textures back
        HostPicture picture = large;
        {
            const MemoryLimit limit(more * megabyte);
            doAdjust(picture.image(), both);
        }
        bool whole = false;
        for (const auto& outcome : outcomes) whole = whole || picture.bytes() == outcome;
        EXPECT_TRUE(whole) << "with " << more << " MB";
        EXPECT_TRUE(picture.guardsIntact());
        if (picture.bytes() == outcomes[0]) ++spared;

        EXPECT_EQ(adjusted(large, both), outcomes[3]) << "after " << more << " MB\n" << log();
    }
    EXPECT_GT(spared, 0);
    EXPECT_NE(log().find("The graphics driver is out of memory"), std::string::npos);
    EXPECT_NE(log().find("The picture is not rendered and stays as it was"), std::string::npos);
}

}  // namespace
