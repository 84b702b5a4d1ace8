#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "files/AtomicFile.h"
#include "platform/FileNames.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::app;
using keladjust::test::TemporaryFolder;
namespace fs = std::filesystem;

bool opens(const std::string& name) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "rb"),
                                                               &std::fclose);
    return file != nullptr;
}

TEST(FileNamesWin32, AreOneInCapitalsOrNot) {
    EXPECT_EQ(platform::comparable(u8"C:\\Wüste\\b.png"),
              platform::comparable(u8"c:\\WÜSTE\\B.PNG"));
    EXPECT_NE(platform::comparable(u8"Wüste.png"), platform::comparable(u8"Wuste.png"));
}

// Wine's code page, 1252, has umlauts and no Japanese.
TEST(FileNamesWin32, AreFoundByNarrowNames) {
    const TemporaryFolder folder;
    for (const char8_t* name : {u8"Düne.cube", u8"砂丘.cube", u8"Düne 砂丘.cube"}) {
        const fs::path file = folder.path() / name;
        writeFile(file, std::string_view("text"));
        EXPECT_TRUE(opens(platform::narrow(file).value())) << file;
    }
    EXPECT_EQ(platform::narrow(u8"Düne"), "D\xFCne");
}

TEST(FileNamesWin32, MayHaveNoNarrowName) {
    const TemporaryFolder folder;
    // There is no such file, so it has no short name.
    EXPECT_EQ(platform::narrow(folder.path() / u8"砂丘"), std::nullopt);
}

TEST(FileNamesWin32, TellWhatIsWrongWithThem) {
    const std::string manyLetters(255, 'a');
    EXPECT_EQ(platform::faultIn("C:\\a\\b.png"), std::nullopt);
    EXPECT_EQ(platform::faultIn("C:\\" + manyLetters), std::nullopt);
    EXPECT_NE(platform::faultIn("C:\\" + manyLetters + 'a').value().find("too long"),
              std::string::npos);
    // 259 letters in all, and one more.
    EXPECT_EQ(platform::faultIn("C:\\ab\\" + manyLetters.substr(2)), std::nullopt);
    EXPECT_NE(platform::faultIn("C:\\abc\\" + manyLetters.substr(2)).value().find("too long"),
              std::string::npos);
    for (const char* name : {"a|b.png", "a?.png", "a*/b.png", "<a>", "a\"b"}) {
        EXPECT_NE(platform::faultIn(name).value().find("hold none of"), std::string::npos) << name;
    }
}

}  // namespace
