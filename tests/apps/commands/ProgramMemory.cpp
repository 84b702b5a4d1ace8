// How much memory the program takes for files that are made to exhaust it. More than the bound is
// refused by the system, so that a picture which takes it is told for want of memory.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>

#include "files/AtomicFile.h"
#include "support/HostilePictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

constexpr rlim_t hundredMegabytes = 100'000'000;

/// No process that is started while it lives gets more memory to write to, used or not.
class MostMemory {
public:
    explicit MostMemory(rlim_t bytes) {
        getrlimit(RLIMIT_DATA, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_DATA, &limit);
    }
    ~MostMemory() { setrlimit(RLIMIT_DATA, &before_); }
    MostMemory(const MostMemory&) = delete;
    MostMemory& operator=(const MostMemory&) = delete;

private:
    rlimit before_{};
};

class ProgramMemory : public testing::Test {
protected:
    /// With one thread, since each that waits for work has a stack of 8 MiB set aside for it.
    Outcome run(const HostilePicture& picture, std::vector<std::string> options) {
        writeFile(folder / picture.name, std::span<const unsigned char>(picture.bytes));
        options.insert(options.begin(), (folder / picture.name).string());
        options.insert(options.end(), {"--jobs", "1", "--threads", "1"});
        const MostMemory bound(hundredMegabytes);
        return runProgram(options);
    }

    TemporaryFolder folder;
};

TEST_F(ProgramMemory, OfBombsIsThatOfSmallPictures) {
    for (const HostilePicture& picture : hostilePictures()) {
        SCOPED_TRACE(picture.name);
        const Outcome outcome = run(picture, {"-o", (folder / "out.png").string()});
        EXPECT_EQ(outcome.code, picture.complaint.empty() ? 0 : 1) << outcome.errors;
        EXPECT_NE(outcome.errors.find(picture.complaint), std::string::npos) << outcome.errors;
    }
}

// Comparisons are twice as large, and no encoder takes as much as that of lossless WebP.
TEST_F(ProgramMemory, OfAHundredBytesIsBelowAHundredMegabytes) {
    for (const HostilePicture& picture : fullestSmallPictures()) {
        SCOPED_TRACE(picture.name);
        const auto output = (folder / "out.webp").string();
        const Outcome outcome = run(picture, {"--clarity", "20", "--sheet", "clarity", "--compare",
                                              "--lossless", "-o", output});
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
    }
}

// The bound is one: a picture that needs more is told so.
TEST_F(ProgramMemory, IsBoundedInTheseTests) {
    const auto all = hostilePictures();
    const auto flat = std::ranges::find(all, "flat.webp", &HostilePicture::name);
    ASSERT_NE(flat, all.end());
    const Outcome outcome =
        run(*flat, {"--max-pixels", "4294967296", "-o", (folder / "out.png").string()});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.errors.find("not enough memory"), std::string::npos) << outcome.errors;
}

}  // namespace
