#include <gtest/gtest.h>

#include "platform/FileName.h"

namespace {

using keladjust::platform::fileNameBegin;

TEST(FileNameOfWindows, BeginsBehindSeparatorsOfEitherKind) {
    EXPECT_EQ(fileNameBegin("folder\\picture.png"), 7u);
    EXPECT_EQ(fileNameBegin("C:\\a/b\\picture.png"), 7u);
    EXPECT_EQ(fileNameBegin("C:\\a\\b/picture.png"), 7u);
    EXPECT_EQ(fileNameBegin("\\\\server\\share\\picture.png"), 15u);
}

TEST(FileNameOfWindows, BeginsBehindADriveWithoutAFolder) {
    EXPECT_EQ(fileNameBegin("C:picture.png"), 2u);
}

}  // namespace
