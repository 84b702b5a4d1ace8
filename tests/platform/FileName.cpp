#include "platform/FileName.h"

#include <gtest/gtest.h>

namespace {

using keladjust::platform::fileNameBegin;

TEST(FileName, BeginsBehindTheLastSeparator) {
    EXPECT_EQ(fileNameBegin("picture.png"), 0u);
    EXPECT_EQ(fileNameBegin("folder/picture.png"), 7u);
    EXPECT_EQ(fileNameBegin("/a/b/picture.png"), 5u);
    EXPECT_EQ(fileNameBegin("/picture.png"), 1u);
}

TEST(FileName, MayBeEmpty) {
    EXPECT_EQ(fileNameBegin(""), 0u);
    EXPECT_EQ(fileNameBegin("folder/"), 7u);
}

}  // namespace
