// The program on a machine whose GPU can be used, or not. Runs on a display.

#include <gtest/gtest.h>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"
#include "support/Variable.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;

class ProgramGpu : public testing::Test {
protected:
    /// Adjusts a picture and expects nothing to be said but that line with these details.
    void expectDetails(const std::vector<std::string>& options, const std::string& details) {
        const std::string output = (folder / "out.png").string();
        std::vector<std::string> arguments{picture, "-v", "-o", output};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.output, picture + ": PNG, 61 x 47, adjusted on the " + details + '\n' +
                                      picture + " -> " + output + '\n');
        EXPECT_EQ(outcome.errors, "");
    }

    /// Insists on the GPU, in vain, and expects to be told why.
    std::string refusal() {
        const Outcome outcome =
            runProgram({picture, "--gpu", "--exposure", "20", "--save-preset",
                        (folder / "preset.json").string(), "-o", (folder / "new" / "").string()});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
        const std::string before = "keladjust: the GPU cannot be used (";
        const std::string behind = "); use --auto or --cpu\n";
        const std::string& text = outcome.errors;
        if (!text.starts_with(before) || !text.ends_with(behind)) {
            ADD_FAILURE() << text;
            return "";
        }
        return text.substr(before.size(), text.size() - before.size() - behind.size());
    }

    /// Expects the CPU to do what the GPU cannot, for the same reason.
    void expectTheCpuHasToDo() {
        const std::string reason = refusal();
        EXPECT_NE(reason, "");
        expectDetails({"--exposure", "20", "--auto"}, "CPU path (" + reason + ")");
        std::filesystem::remove(folder / "out.png");
    }

    void SetUp() override {
        writeFile(picture, pngCodec().encode(noise(61, 47, ChannelLayout::bgra), {}));
    }

    /// Wider than Mesa's textures may be.
    std::string tooWide() {
        const auto path = inputs / "wide.png";
        writeFile(path, pngCodec().encode(noise(16385, 2, ChannelLayout::bgra), {}));
        return path.string();
    }

    TemporaryFolder inputs;
    TemporaryFolder folder;
    const std::string picture = (inputs / "noise.png").string();
};

TEST_F(ProgramGpu, SaysWhichPathRan) {
    expectDetails({"--exposure", "20"}, "CPU path");
    expectDetails({"--exposure", "20", "--auto"}, "GPU path");
    expectDetails({"--exposure", "20", "--gpu"}, "GPU path");
    expectDetails({"--exposure", "20", "--cpu"}, "CPU path");
    expectDetails({"--sharpen", "20", "--auto"}, "GPU path");
}

TEST_F(ProgramGpu, LeavesTheEngineAloneIfNothingIsToBeDone) {
    expectDetails({"--auto"}, "CPU path");
    expectDetails({"--auto", "--temperature", "11500", "--exposure", "0"}, "CPU path");
    expectDetails({"--gpu"}, "GPU path");
    expectSamePixels(decodeFile(folder / "out.png"), decodeFile(picture));
    // A sheet is adjusted, its picture is not.
    EXPECT_EQ(
        runProgram({picture, "--auto", "--sheet", "exposure", "-o", (folder / "out.png").string()})
            .code,
        0);
    expectSamePixels(decodeFile(folder / "out.png"), decodeFile(picture));
}

// Otherwise it would say that there is no display.
TEST_F(ProgramGpu, StartsTheEngineOnRequestOnly) {
    const Variable display("DISPLAY", ":9999");
    expectDetails({"--exposure", "20"}, "CPU path");
    expectDetails({"--exposure", "20", "--cpu"}, "CPU path");
}

TEST_F(ProgramGpu, ADriverOnTheCpuIsLeftAlone) {
    const Variable driver("force_gl_renderer", "softpipe");
    expectDetails({"--exposure", "20", "--auto"}, "CPU path (the driver renders in software)");
    expectDetails({"--exposure", "20", "--gpu"}, "GPU path");
}

TEST_F(ProgramGpu, LeavesNothingButItsPicturesAnywhere) {
    const TemporaryFolder scratch;
    const Variable temporary(temporaryFolderVariable, scratch.path().string().c_str());
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    for (const char* use : {"--gpu", "--cpu", "--auto"}) {
        EXPECT_EQ(runProgram({picture, use, "--exposure", "20", "-o", "out.png"}).code, 0);
        EXPECT_EQ(folder.files(), std::vector<std::string>{"out.png"});
        EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
    }
    std::filesystem::current_path(before);
}

// Also where one among them cannot be rendered.
TEST_F(ProgramGpu, JobsDoNotChangePictures) {
    const auto adjustWith = [&](const std::string& jobs) {
        const Outcome outcome =
            runProgram({picture, tooWide(), photograph("nature/Storm.jpg"), "--auto", "--exposure",
                        "20", "--red-hue", "10", "--jobs", jobs, "-o", (folder / jobs).string()});
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
    };
    adjustWith("1");
    adjustWith("4");
    for (const std::string name : {"noise.png", "wide.png", "Storm.jpg"}) {
        EXPECT_EQ(readFile(folder / ("1/" + name)), readFile(folder / ("4/" + name))) << name;
    }
}

TEST_F(ProgramGpu, OnePictureThatCannotBeRenderedDoesNotStopTheRest) {
    const std::string wide = tooWide();
    const Outcome possible = runProgram({wide, picture, "--auto", "--exposure", "20", "--jobs", "1",
                                         "-v", "-o", (folder / "auto").string()});
    EXPECT_EQ(possible.code, 0) << possible.errors;
    EXPECT_NE(possible.output.find("wide.png: PNG, 16385 x 2, adjusted on the CPU path ("),
              std::string::npos)
        << possible.output;
    EXPECT_NE(possible.output.find("adjusted on the GPU path"), std::string::npos);

    const Outcome always = runProgram({wide, picture, "--gpu", "--exposure", "20", "--jobs", "1",
                                       "-o", (folder / "gpu").string()});
    EXPECT_EQ(always.code, 1);
    EXPECT_NE(always.errors.find("wide.png: the GPU cannot be used ("), std::string::npos)
        << always.errors;
    EXPECT_EQ(folder.files(),
              (std::vector<std::string>{"auto/noise.png", "auto/wide.png", "gpu/noise.png"}));
}

TEST_F(ProgramGpu, WithoutADisplayTheCpuHasToDo) {
    for (const char* display : {static_cast<const char*>(nullptr), ":9999"}) {
        const Variable variable("DISPLAY", display);
        expectTheCpuHasToDo();
    }
}

TEST_F(ProgramGpu, WithAnOldDriverTheCpuHasToDo) {
    for (const std::string version : {"2.1", "3.1"}) {
        const Variable variable("MESA_GL_VERSION_OVERRIDE", version.c_str());
        expectTheCpuHasToDo();
    }
}

}  // namespace
