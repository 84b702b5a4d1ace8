#include "pictures/Orientation.h"

#include <gtest/gtest.h>

#include "support/Pictures.h"

namespace {

using namespace keladjust::app;

// Rows of one letter per pixel, top row first.
Photo photoOf(const std::vector<std::string>& rows) {
    Photo photo(rows[0].size(), rows.size(), ChannelLayout::grey);
    for (std::uint32_t y = 0; y < photo.height(); ++y) {
        for (std::uint32_t x = 0; x < photo.width(); ++x) {
            *photo.pixel(x, y) = static_cast<unsigned char>(rows[y][x]);
        }
    }
    return photo;
}

std::vector<std::string> rowsOf(const Photo& photo) {
    std::vector<std::string> rows;
    for (std::uint32_t y = 0; y < photo.height(); ++y) {
        rows.emplace_back(photo.row(y), photo.row(y) + photo.width());
    }
    return rows;
}

// How an upright F over two columns and three rows is stored with each EXIF orientation.
struct Stored {
    int orientation;
    std::vector<std::string> rows;
};

TEST(Orientation, TurnsAllEightUpright) {
    const std::vector<std::string> upright_ = {"ab", "cd", "ef"};
    const std::vector<Stored> cases = {
        {1, {"ab", "cd", "ef"}}, {2, {"ba", "dc", "fe"}}, {3, {"fe", "dc", "ba"}},
        {4, {"ef", "cd", "ab"}}, {5, {"ace", "bdf"}},     {6, {"bdf", "ace"}},
        {7, {"fdb", "eca"}},     {8, {"eca", "fdb"}},
    };
    for (const Stored& stored : cases) {
        EXPECT_EQ(rowsOf(upright(photoOf(stored.rows), stored.orientation)), upright_)
            << stored.orientation;
    }
}

TEST(Orientation, IgnoresValuesThatMeanNothing) {
    for (const int orientation : {-1, 0, 9, 65535}) {
        EXPECT_EQ(rowsOf(upright(photoOf({"ab", "cd"}), orientation)),
                  (std::vector<std::string>{"ab", "cd"}));
    }
}

TEST(Orientation, MovesWholePixelsAndKeepsTheRest) {
    Photo photo = keladjust::test::noise(3, 2, ChannelLayout::bgra, true);
    photo.notices = {"something"};
    const Photo turned = upright(photo, 6);
    EXPECT_TRUE(turned.hasAlpha);
    EXPECT_EQ(turned.notices, std::vector<std::string>{"something"});
    for (int channel = 0; channel < 4; ++channel) {
        EXPECT_EQ(turned.pixel(1, 0)[channel], photo.pixel(0, 0)[channel]);
        EXPECT_EQ(turned.pixel(0, 2)[channel], photo.pixel(2, 1)[channel]);
    }
}

}  // namespace
