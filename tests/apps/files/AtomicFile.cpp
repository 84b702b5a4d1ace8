#include "files/AtomicFile.h"

#include <gtest/gtest.h>

#include <fstream>

#include "files/InputFile.h"
#include "support/TemporaryFolder.h"
#include "text/Failure.h"

namespace {

using namespace keladjust::app;
using keladjust::test::TemporaryFolder;

std::string textIn(const std::filesystem::path& path) {
    const Bytes bytes = readFile(path);
    return std::string(bytes.begin(), bytes.end());
}

TEST(AtomicFile, AppearsOnlyWhenCommitted) {
    const TemporaryFolder folder;
    const std::string_view text = "new";
    AtomicFile file(folder / "target");
    file.write(std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
    EXPECT_FALSE(std::filesystem::exists(folder / "target"));
    file.commit();
    EXPECT_EQ(textIn(folder / "target"), "new");
    EXPECT_EQ(folder.files(), std::vector<std::string>{"target"});
}

TEST(AtomicFile, LeavesNothingBehindWithoutCommit) {
    const TemporaryFolder folder;
    writeFile(folder / "target", std::string_view("old"));
    {
        AtomicFile file(folder / "target");
        file.write({});
        EXPECT_EQ(folder.files().size(), 2u);
    }
    EXPECT_EQ(folder.files(), std::vector<std::string>{"target"});
    EXPECT_EQ(textIn(folder / "target"), "old");
}

TEST(AtomicFile, ReplacesAFileAndKeepsItsPermissions) {
    const TemporaryFolder folder;
    writeFile(folder / "target", std::string_view("old"));
    const auto permissions =
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    std::filesystem::permissions(folder / "target", permissions);
    const auto before = std::filesystem::status(folder / "target").permissions();
    writeFile(folder / "target", std::string_view("new"));
    EXPECT_EQ(textIn(folder / "target"), "new");
    EXPECT_EQ(std::filesystem::status(folder / "target").permissions(), before);
}

// Systems differ in whether such a file may be replaced; none may be left with two.
TEST(AtomicFile, LeavesNothingBesideAFileThatMayNotBeWrittenTo) {
    const TemporaryFolder folder;
    writeFile(folder / "target", std::string_view("old"));
    std::filesystem::permissions(folder / "target", std::filesystem::perms::owner_read);
    std::string expected = "new";
    try {
        writeFile(folder / "target", std::string_view("new"));
    } catch (const Failure&) {
        expected = "old";
    }
    EXPECT_EQ(textIn(folder / "target"), expected);
    EXPECT_EQ(folder.files(), std::vector<std::string>{"target"});
    std::filesystem::permissions(folder / "target", std::filesystem::perms::owner_all);
}

TEST(AtomicFile, SaysWhichFileCannotBeWritten) {
    const TemporaryFolder folder;
    writeFile(folder / "file", std::string_view("x"));
    std::filesystem::create_directory(folder / "folder");
    for (const char* name : {"file/below", "missing/below", "folder"}) {
        try {
            writeFile(folder / name, std::string_view("y"));
            ADD_FAILURE() << name << " was written";
        } catch (const Failure& failure) {
            EXPECT_NE(std::string(failure.what()).find("cannot write"), std::string::npos);
        }
    }
    EXPECT_EQ(folder.files(), std::vector<std::string>{"file"});
}

}  // namespace
