#include <gtest/gtest.h>

#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using keladjust::app::readFile;

class ProgramBatch : public testing::Test {
protected:
    std::vector<std::string> withOptions(const std::string& output,
                                         const std::vector<std::string>& options) const {
        std::vector<std::string> arguments = photos;
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.insert(arguments.end(), {"-o", (folder / output).string()});
        return arguments;
    }

    TemporaryFolder folder;
    std::vector<std::string> photos = {
        photograph("nature/Dune.jpg"), photograph("nature/FreshFlower.jpg"),
        photograph("nature/Aqua.jpg"), photograph("nature/Storm.jpg"),
        photograph("nature/GreenMeadow.jpg")};
};

TEST_F(ProgramBatch, JobsChangeNeitherPicturesNorOrder) {
    const std::vector<std::string> settings = {"--exposure",        "10", "--contrast", "20",
                                               "--vignette-amount", "-30"};
    auto one = settings;
    one.insert(one.end(), {"--jobs", "1"});
    auto four = settings;
    four.insert(four.end(), {"--jobs", "4"});
    const Outcome first = runProgram(withOptions("one", one));
    const Outcome second = runProgram(withOptions("four", four));
    ASSERT_EQ(first.code, 0) << first.errors;
    ASSERT_EQ(second.code, 0) << second.errors;

    std::string expectedLines;
    for (const std::string& photo : photos) {
        const std::string name = std::filesystem::path(photo).filename().string();
        EXPECT_EQ(readFile(folder / ("one/" + name)), readFile(folder / ("four/" + name))) << name;
        expectedLines += photo + " -> " + (folder.path() / "four" / name).string() + '\n';
    }
    EXPECT_EQ(second.output, expectedLines);
}

TEST_F(ProgramBatch, ABadFileDoesNotStopTheRest) {
    keladjust::app::writeFile(folder / "bad.jpg", std::string_view("not a picture"));
    photos.insert(photos.begin() + 2, (folder / "bad.jpg").string());
    photos.push_back((folder / "missing.jpg").string());
    const Outcome outcome = runProgram(withOptions("out", {}));
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.errors.find("bad.jpg: not a JPEG"), std::string::npos);
    EXPECT_NE(outcome.errors.find("missing.jpg: no such file"), std::string::npos);
    EXPECT_NE(outcome.errors.find("2 of 7 pictures failed"), std::string::npos);
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"bad.jpg", "out/Aqua.jpg", "out/Dune.jpg",
                                                        "out/FreshFlower.jpg",
                                                        "out/GreenMeadow.jpg", "out/Storm.jpg"}));
}

TEST_F(ProgramBatch, MoreJobsThanPicturesAreFine) {
    photos.resize(1);
    const Outcome outcome = runProgram(withOptions("out/", {"--jobs", "64"}));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(folder.files(), std::vector<std::string>{"out/Dune.jpg"});
}

}  // namespace
