// A disk that is full, which a bound on the size of files stands in for.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <string>
#include <vector>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

/// No process that is started while it lives may make a larger file.
class LargestFile {
public:
    explicit LargestFile(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~LargestFile() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    LargestFile(const LargestFile&) = delete;
    LargestFile& operator=(const LargestFile&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

TEST(ProgramFullDisk, LeavesNothingHalfWritten) {
    const TemporaryFolder folder;
    const std::string picture = (folder / "a.png").string();
    writeFile(picture, pngCodec().encode(noise(200, 200, ChannelLayout::bgra), {}));
    const std::vector<std::vector<std::string>> runs = {
        {picture, "-o", (folder / "b.png").string()},
        {"lut", "-o", (folder / "b.cube").string()},
        {"lut", "--order", "red-fastest", "-o", (folder / "b.cube").string()}};
    const LargestFile limit(50'000);
    for (const auto& arguments : runs) {
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.code, 1) << arguments[1];
        EXPECT_NE(outcome.errors.find("cannot write " + arguments.back()), std::string::npos)
            << outcome.errors;
        EXPECT_EQ(folder.files(), std::vector<std::string>{"a.png"});
    }
}

}  // namespace
