// Run in the Japanese code page, in which the second byte of a letter may be a backslash's.

#include <windows.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/FileName.h"

namespace {

using keladjust::platform::fileNameBegin;

const std::string so = "\x83\x5C";

TEST(FileNameInJapanese, BeginsBehindSeparatorsAndNotInsideLetters) {
    ASSERT_EQ(GetACP(), 932u);
    EXPECT_EQ(fileNameBegin(so + ".png"), 0u);
    EXPECT_EQ(fileNameBegin("C:\\" + so + "\\" + so + so + ".png"), 6u);
    EXPECT_EQ(fileNameBegin("C:\\" + so), 3u);
}

}  // namespace
