#include "pictures/Photo.h"

#include <gtest/gtest.h>

#include "text/Failure.h"

namespace {

using namespace keladjust::app;

TEST(Photo, RefusesSizesThatTheLibraryCannotAddress) {
    EXPECT_THROW(Photo(65'536, 16'384, ChannelLayout::bgra), Failure);
    EXPECT_THROW(Photo(0xFFFF'FFFF, 1, ChannelLayout::grey), Failure);
    EXPECT_THROW(Photo(0xFFFF'FFFF, 0xFFFF'FFFF, ChannelLayout::bgra), Failure);
    EXPECT_THROW(Photo(0, 5, ChannelLayout::grey), Failure);
}

TEST(Photo, PadsRowsToFourBytes) {
    EXPECT_EQ(Photo(5, 2, ChannelLayout::grey).stride(), 8u);
    EXPECT_EQ(Photo(5, 2, ChannelLayout::bgra).stride(), 20u);
}

}  // namespace
