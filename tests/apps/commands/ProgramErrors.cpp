#include <gtest/gtest.h>

#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/OddPictures.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using keladjust::app::Bytes;
using keladjust::app::writeFile;

/// Every refusal says what is wrong in words that help, exits with its code and writes nothing.
class ProgramErrors : public testing::Test {
protected:
    void expectRefusal(const std::vector<std::string>& arguments, int code,
                       const std::string& text) {
        const auto before = folder.files();
        const Outcome outcome = runProgram(arguments);
        SCOPED_TRACE(outcome.errors);
        EXPECT_EQ(outcome.code, code);
        EXPECT_TRUE(outcome.errors.starts_with("keladjust: "));
        EXPECT_NE(outcome.errors.find(text), std::string::npos) << "expected: " << text;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(folder.files(), before);
    }

    std::string file(const std::string& name, std::string_view content = "") {
        writeFile(folder / name, content);
        return (folder / name).string();
    }

    std::string start(const std::string& name, std::size_t size) {
        Bytes bytes = keladjust::app::readFile(photo);
        bytes.resize(size);
        writeFile(folder / name, std::span<const unsigned char>(bytes));
        return (folder / name).string();
    }

    TemporaryFolder folder;
    const std::string photo = photograph("nature/Dune.jpg");
    const std::string output = (folder / "out.png").string();
};

TEST_F(ProgramErrors, InputsThatAreNoPictures) {
    expectRefusal({(folder / "none.jpg").string(), "-o", output}, 1, "none.jpg: no such file");
    expectRefusal({folder.path().string(), "-o", output}, 1, "this is a folder");
    expectRefusal({file("text.jpg", "hello, this is text"), "-o", output}, 1,
                  "not a JPEG, PNG, TIFF or WebP picture");
    expectRefusal({file("empty.jpg"), "-o", output}, 1, "empty");
    expectRefusal({start("half.jpg", 300'000), "-o", output}, 1, "damaged or truncated JPEG");
    expectRefusal({start("header.jpg", 20), "-o", output}, 1, "damaged or truncated JPEG");
    writeAbsurdJpeg(folder / "absurd.jpg");
    expectRefusal({(folder / "absurd.jpg").string(), "-o", output}, 1, "65278 x 65278");
}

TEST_F(ProgramErrors, OutputsThatCannotBeWritten) {
    const std::string occupied = file("file");
    expectRefusal({photo, "-o", occupied + "/out.png"}, 1, "cannot write");
    expectRefusal({photo, "-o", (folder / "missing/out.png").string()}, 1, "cannot write");
    expectRefusal({photo, "-o", occupied + "/out/"}, 1, "cannot create the folder");
    expectRefusal({"--tint", "5", "--save-preset", occupied + "/p.json"}, 1, "cannot write");
    expectRefusal({"lut", "-o", occupied + "/l.cube"}, 1, "cannot write");
    expectRefusal({"lut", "--order", "red-fastest", "-o", occupied + "/l.cube"}, 1, "cannot write");
}

TEST_F(ProgramErrors, OutputsThatMakeNoSense) {
    expectRefusal({photo}, 2, "say where to write");
    expectRefusal({photo, "-o", (folder / "out.xyz").string()}, 2, "cannot tell the format");
    expectRefusal({photo, "-o", output, "--in-place"}, 2, "exclude each other");
    expectRefusal({photo, "--cpu", "--gpu", "-o", output}, 2, "--gpu excludes --cpu");
    expectRefusal({photo, "--gpu", "--auto", "-o", output}, 2, "--auto excludes --gpu");
    expectRefusal({photo, "--in-place", "--format", "png"}, 2, "--in-place keeps the format");
    expectRefusal({photo, "-o", output, "--format", "gif"}, 2, "jpeg, png, tiff and webp");
    expectRefusal({photo, photo, "-o", folder.path().string()}, 2, "would both be written");
    expectRefusal({photo, "-o", photo}, 2, "would be overwritten");
}

TEST_F(ProgramErrors, ValuesThatAreNoNumbers) {
    expectRefusal({photo, "-o", output, "--exposure", "abc"}, 2,
                  "--exposure needs a number, not \"abc\"; useful values are -100..100");
    expectRefusal({photo, "-o", output, "--exposure", "nan"}, 2, "finite number");
    expectRefusal({photo, "-o", output, "--exposure", "inf"}, 2, "finite number");
    expectRefusal({photo, "-o", output, "--exposure", "1e999"}, 2, "finite number");
    expectRefusal({photo, "-o", output, "--exposure", "1e39"}, 2, "out of all bounds");
    expectRefusal({photo, "-o", output, "--exposure", ""}, 2, "--exposure needs a number");
    expectRefusal({photo, "-o", output, "--temperature", "9000.5"}, 2, "whole number");
    expectRefusal({photo, "-o", output, "--exposure"}, 2, "--exposure");
}

TEST_F(ProgramErrors, NumbersOutOfRange) {
    expectRefusal({photo, "-o", output, "--jobs", "0"}, 2, "--jobs: Value 0 not in range 1 to 64");
    expectRefusal({photo, "-o", output, "--jobs", "many"}, 2, "--jobs");
    expectRefusal({photo, "-o", output, "--threads", "0"}, 2, "--threads");
    expectRefusal({photo, "-o", output, "--quality", "0"}, 2, "not in range 1 to 100");
    expectRefusal({photo, "-o", output, "--quality", "101"}, 2, "not in range 1 to 100");
    expectRefusal({"lut", "-o", output, "--size", "1"}, 2, "not in range 2 to 256");
    expectRefusal({"lut", "-o", output, "--size", "257"}, 2, "not in range 2 to 256");
}

TEST_F(ProgramErrors, UnknownNames) {
    expectRefusal({photo, "-o", output, "--exposur", "5"}, 2,
                  "unknown option --exposur; did you mean --exposure?");
    expectRefusal({photo, "-o", output, "--red-huge=5"}, 2, "did you mean --red-hue?");
    expectRefusal({photo, "-o", output, "--sheet", "contrasts"}, 2, "did you mean contrast?");
    expectRefusal({"lut", "-o", output, "--ordr", "red-fastest"}, 2, "did you mean --order?");
    expectRefusal({"lut", photo, "-o", output}, 2, "was not expected here");
    expectRefusal({"lut", "-o", output, "--order", "green-fastest"}, 2, "red-fastest");
}

TEST_F(ProgramErrors, BadPresets) {
    const auto expectBad = [&](const std::string& preset, const std::string& text) {
        expectRefusal({photo, "-o", output, "--preset", preset}, 2, text);
        expectRefusal({"lut", "-o", output, "--preset", preset}, 2, text);
    };
    expectBad((folder / "none.json").string(), "none.json: no such file");
    expectBad(file("key.json", R"({"exposre": 5})"), "did you mean exposure?");
    expectBad(file("type.json", R"({"exposure": "5"})"), "\"exposure\" must be a number");
    expectBad(file("text.json", "exposure = 5"), "not valid JSON");
    expectBad(file("list.json", "[5]"), "one JSON object");
}

TEST_F(ProgramErrors, NothingToDo) {
    expectRefusal({}, 2, "name at least one picture");
    expectRefusal({"-o", output}, 2, "name at least one picture");
    expectRefusal({"lut"}, 2, "--output is required");
}

}  // namespace
