// What other systems do differently: names of files, files in use, line ends, desktops.

#include <windows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"
#include "text/PathText.h"

namespace {

using namespace keladjust::test;
using namespace keladjust::app;
namespace fs = std::filesystem;

class ProgramOnWindows : public testing::Test {
protected:
    using Names = std::vector<std::string>;

    ProgramOnWindows() { fs::current_path(folder.path()); }
    ~ProgramOnWindows() override { fs::current_path(start); }

    /// A picture in the folder, which is the current one.
    static void picture(const fs::path& name) {
        if (name.has_parent_path()) fs::create_directories(name.parent_path());
        writeFile(name, pngCodec().encode(noise(20, 10, ChannelLayout::bgra), {}));
    }

    void expectRefusal(const std::vector<std::string>& arguments, int code,
                       const std::string& text) {
        const Names files = folder.files();
        const Outcome outcome = runProgram(arguments);
        SCOPED_TRACE(outcome.errors);
        EXPECT_EQ(outcome.code, code);
        EXPECT_NE(outcome.errors.find(text), std::string::npos) << "expected: " << text;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(folder.files(), files);
    }

    void expectOutput(const std::vector<std::string>& arguments, const std::string& output) {
        const Outcome outcome = runProgram(arguments);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.output, output);
    }

    TemporaryFolder folder;
    const fs::path start = fs::current_path();
};

TEST_F(ProgramOnWindows, CapitalsDoNotMakeTwoNames) {
    picture("x/a.png");
    picture("y/A.PNG");
    expectRefusal({"x/a.png", "y/A.PNG", "-o", "out"}, 2, "would both be written to");
    picture(u8"x/ä.png");
    picture(u8"y/Ä.png");
    expectRefusal({"x/ä.png", "y/Ä.png", "-o", "out"}, 2, "would both be written to");
    expectRefusal({"x/a.png", "-o", "X/A.png"}, 2, "is an input and would be overwritten");
    expectRefusal({"x/a.png", "--save-preset", "X\\A.PNG", "-o", "b.png"}, 2,
                  "is an input and would be overwritten");
    expectRefusal({"x/a.png", "--compare", "--save-preset", "B-COMPARE.png", "-o", "b.png"}, 2,
                  "would both be written to");
}

TEST_F(ProgramOnWindows, AShortNameIsTheFileItself) {
    picture("a picture with a long name.png");
    std::wstring shortName(MAX_PATH, L'\0');
    shortName.resize(
        GetShortPathNameW(L"a picture with a long name.png", shortName.data(), MAX_PATH));
    ASSERT_FALSE(shortName.empty());
    expectRefusal({"a picture with a long name.png", "-o", textOf(shortName)}, 2,
                  "is an input and would be overwritten");
}

TEST_F(ProgramOnWindows, SeparatorsAreOfEitherKind) {
    picture("in/deep/a.png");
    expectOutput({"in\\deep\\a.png", "-o", "b.png"}, "in\\deep\\a.png -> b.png\n");
    expectOutput({"in/deep\\a.png", "-o", "new\\folder\\"},
                 "in/deep\\a.png -> new\\folder\\a.png\n");
    expectOutput({(folder / "in\\deep\\a.png").string(), "-o", "in\\c.png", "-q"}, "");
    EXPECT_EQ(folder.files(), (Names{"b.png", "in/c.png", "in/deep/a.png", "new/folder/a.png"}));
}

TEST_F(ProgramOnWindows, NamesNeedNotBeInTheCodePage) {
    picture(u8"Wüste/砂丘.png");
    expectOutput({"Wüste\\砂丘.png", "-o", "Ночь 🌙\\", "--save-preset", "砂.json", "--tint", "9"},
                 "Wüste\\砂丘.png -> Ночь 🌙\\砂丘.png\n");
    EXPECT_TRUE(fs::exists(fs::path(u8"Ночь 🌙") / u8"砂丘.png"));
    expectOutput({"lut", "--preset", "砂.json", "-o", "Ночь 🌙\\砂丘.cube"}, "");
    expectOutput({"lut", "--preset", "砂.json", "-o", "Düne.cube"}, "");
    EXPECT_EQ(readFile(fs::path(u8"Ночь 🌙") / u8"砂丘.cube"), readFile(u8"Düne.cube"));
    expectRefusal({"砂漠.png", "-o", "b.png"}, 1, "砂漠.png: no such file");
}

TEST_F(ProgramOnWindows, PatternsStandForFiles) {
    for (const char8_t* name : {u8"in/b.png", u8"in/a 1.png", u8"in/砂.png", u8"in/c.txt"}) {
        picture(name);
    }
    fs::create_directory("in/d.png");
    expectOutput({"in\\*.png", "-o", "out"},
                 "in\\a 1.png -> out\\a 1.png\n"
                 "in\\b.png -> out\\b.png\n"
                 "in\\砂.png -> out\\砂.png\n");
    expectOutput({"in/?.png", "-o", "out", "-q"}, "");
    expectRefusal({"in\\*.jpg", "-o", "out.png"}, 1, "in\\*.jpg: no such file");
}

TEST_F(ProgramOnWindows, NamesThatCannotBeSaySo) {
    picture("a.png");
    const std::string longName(300, 'n');
    expectRefusal({"a.png", "-o", longName + ".png"}, 1, "letters is too long");
    expectRefusal({"a.png", "-o", longName + "/"}, 1, "letters is too long");
    expectRefusal({"a.png", "-o", longName + "/b.png"}, 1, "letters is too long");
    expectRefusal({"--tint", "5", "--save-preset", longName}, 1, "letters is too long");
    expectRefusal({"lut", "-o", longName + ".cube"}, 1, "letters is too long");
    expectRefusal({"lut", "--order", "red-fastest", "-o", longName + ".cube"}, 1,
                  "letters is too long");
    expectRefusal({longName + ".png", "-o", "b.png"}, 1, "no such file");
    expectRefusal({"a.png", "-o", "what|.png"}, 1, "names hold none of");
}

TEST_F(ProgramOnWindows, AFileThatIsInUseStaysAsItIs) {
    picture("a.png");
    writeFile("used.png", std::string_view("old"));
    writeFile("used.cube", std::string_view("old"));
    const std::ifstream usedPicture("used.png"), usedTable("used.cube");
    expectRefusal({"a.png", "-o", "used.png"}, 1, "cannot write used.png: Permission denied");
    expectRefusal({"lut", "-o", "used.cube"}, 1, "cannot write used.cube: Permission denied");
    // What was to replace such a file must not stay either, although it may not be written to.
    fs::permissions("used.png", fs::perms::owner_read);
    expectRefusal({"a.png", "-o", "used.png"}, 1, "cannot write used.png: Permission denied");
    fs::permissions("used.png", fs::perms::owner_all);
    EXPECT_EQ(readFile("used.png"), (Bytes{'o', 'l', 'd'}));
    EXPECT_EQ(readFile("used.cube"), (Bytes{'o', 'l', 'd'}));
}

// Wine lets such a file be replaced, Windows does not.
TEST_F(ProgramOnWindows, AFileThatIsReadOnlyIsReplacedOrStays) {
    picture("a.png");
    picture("b.png");
    writeFile("old.png", std::string_view("old"));
    fs::permissions("b.png", fs::perms::owner_read);
    fs::permissions("old.png", fs::perms::owner_read);
    const Bytes before = readFile("b.png");
    const int code = runProgram({"a.png", "-o", "old.png"}).code;
    EXPECT_EQ(readFile("old.png") == (Bytes{'o', 'l', 'd'}), code == 1);
    EXPECT_EQ(code == 0, pngCodec().recognises(readFile("old.png")));
    const int inPlace = runProgram({"b.png", "--exposure", "50", "--in-place"}).code;
    EXPECT_EQ(readFile("b.png") == before, inPlace == 1);
    EXPECT_EQ(folder.files(), (Names{"a.png", "b.png", "old.png"}));
    for (const char* name : {"b.png", "old.png"}) fs::permissions(name, fs::perms::owner_all);
}

// A table is the same file on every system.
TEST_F(ProgramOnWindows, LinesOfTablesEndAsElsewhere) {
    const auto count = [](const fs::path& name, const std::string& end) {
        const Bytes bytes = readFile(name);
        int lines = 0;
        for (auto at = bytes.begin();
             (at = std::search(at, bytes.end(), end.begin(), end.end())) != bytes.end(); ++at) {
            ++lines;
        }
        return lines;
    };
    expectOutput({"lut", "-o", "blue.cube"}, "");
    EXPECT_EQ(count("blue.cube", "\n"), 8 + 32768);
    EXPECT_EQ(count("blue.cube", "\r"), 0);
    expectOutput({"lut", "--order", "red-fastest", "-o", "red.cube"}, "");
    EXPECT_EQ(count("red.cube", "\n"), 3 + 32768);
    EXPECT_EQ(count("red.cube", "\r"), 0);
}

// Where these tests run, no window can be opened.
TEST_F(ProgramOnWindows, WithoutADesktopTheCpuHasToDo) {
    picture("a.png");
    expectRefusal({"a.png", "--gpu", "--exposure", "20", "-o", "new/"}, 1,
                  "the GPU cannot be used (");
    const Outcome outcome =
        runProgram({"a.png", "--auto", "--exposure", "20", "-o", "b.png", "-v"});
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_TRUE(outcome.output.starts_with("a.png: PNG, 20 x 10, adjusted on the CPU path ("))
        << outcome.output;
}

}  // namespace
